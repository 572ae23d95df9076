#include "ToolTest.hpp"

#include <filesystem>
#include <string>

namespace
{

using namespace ToolTests;
using testing::IsEmpty;
using testing::StartsWith;

using PrintTest = ToolTest;

constexpr const char* ByteOrderMark = "\xEF\xBB\xBF";

TEST_F(PrintTest, WritesTheDocumentInItsOwnEncoding)
{
    const ProcessResult result =
        Run({"print",
             Write("1.xml", "<?xml version='1.0' encoding='ISO-8859-1'?><a b='1'>\xE9<![CDATA[<]]></a>")});
    EXPECT_EQ(result.status, Success);
    EXPECT_EQ(result.output,
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a b=\"1\">\xE9<![CDATA[<]]></a>\n");
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(PrintTest, WritesReferencesForWhatTheEncodingLacks)
{
    const ProcessResult result = Run({"print", "--encoding", "US-ASCII", Write("1.xml", "<a>5 €</a>")});
    EXPECT_EQ(result.output, "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n<a>5 &#x20AC;</a>\n");
}

TEST_F(PrintTest, KeepsEntitiesAndTheirDeclarations)
{
    const ProcessResult result = Run({"print", "-"}, "<!DOCTYPE a [<!ENTITY e \"x\">]><a>&e;</a>");
    EXPECT_EQ(result.output, std::string(ByteOrderMark) + "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                                          "<!DOCTYPE a[<!ENTITY e \"x\">]>\n<a>&e;</a>\n");
}

TEST_F(PrintTest, RefusesAnUnknownEncoding)
{
    const ProcessResult result = Run({"print", Write("1.xml", "<a/>"), "--encoding", "klingon"});
    EXPECT_EQ(result.status, Failure);
    EXPECT_EQ(result.errors, "nuvxml: cannot print in the encoding \"klingon\"\n");
    EXPECT_THAT(result.output, IsEmpty());
}

TEST_F(PrintTest, WritesAFile)
{
    const ProcessResult result = Run({"print", Write("1.xml", "<a/>"), "-o", PathOf("2.xml")});
    EXPECT_EQ(result.status, Success);
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_EQ(folder.Read("2.xml"),
              std::string(ByteOrderMark) + "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a/>\n");
}

TEST_F(PrintTest, CanWriteTheFileThatItReads)
{
    const std::string file = Write("1.xml", "<a  />");
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    EXPECT_EQ(Run({"print", file, "--output", file, "--encoding", "US-ASCII"}).status, Success);
    EXPECT_EQ(folder.Read("1.xml"), "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n<a/>\n");
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(PrintTest, WritesThroughASymbolicLink)
{
    const std::string file = Write("1.xml", "<a/>");
    std::filesystem::create_symlink(file, PathOf("link.xml"));
    EXPECT_EQ(Run({"print", "-", "-o", PathOf("link.xml"), "--encoding", "US-ASCII"}, "<b/>").status,
              Success);
    EXPECT_TRUE(std::filesystem::is_symlink(PathOf("link.xml")));
    EXPECT_EQ(folder.Read("1.xml"), "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n<b/>\n");
}

TEST_F(PrintTest, LeavesTheOldFileWhenItFails)
{
    const std::string file = Write("1.xml", "<a/>");
    EXPECT_EQ(Run({"print", file, "-o", file, "--encoding", "klingon"}).status, Failure);
    EXPECT_EQ(Run({"print", "-", "-o", file}, "<a>").status, Failure);
    EXPECT_EQ(folder.Read("1.xml"), "<a/>");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

TEST_F(PrintTest, TellsWhyItCannotWrite)
{
    const std::string file = Write("1.xml", "<a/>");
    EXPECT_EQ(Run({"print", file, "-o", PathOf("none/2.xml")}).errors,
              "nuvxml: none/2.xml: No such file or directory\n");
    EXPECT_EQ(Run({"print", file, "-o", "/dev/full"}).errors, "nuvxml: /dev/full: No space left on device\n");
}

TEST_F(PrintTest, TellsWhyItCannotRead)
{
    EXPECT_EQ(Run({"print", PathOf("none.xml")}).errors, "nuvxml: none.xml: No such file or directory\n");
    EXPECT_THAT(Run({"print", folder.Path().string()}).errors, testing::EndsWith(": Is a directory\n"));
    EXPECT_EQ(Run({"print", "-"}, "<a>\n</b>").errors,
              "nuvxml: (standard input):2: expected end of tag 'a'\n");
}

} // namespace
