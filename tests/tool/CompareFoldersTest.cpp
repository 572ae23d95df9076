#include "ToolTest.hpp"

#include <nlohmann/json.hpp>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace
{

using namespace ToolTests;
using testing::HasSubstr;
using testing::IsEmpty;

class CompareFoldersTest : public ToolTest
{
  protected:
    CompareFoldersTest()
    {
        for (const char* name : {"left", "right"})
            std::filesystem::create_directory(folder.Path() / name);
    }

    void WriteBoth(const std::string& name, std::string_view left, std::string_view right) const
    {
        Write("left/" + name, left);
        Write("right/" + name, right);
    }

    ProcessResult CompareFolders(const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> arguments{"compare", PathOf("left"), PathOf("right")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }
};

TEST_F(CompareFoldersTest, CountsWhatItHasCompared)
{
    WriteBoth("1.xml", "<a/>", "<a></a>");
    WriteBoth("below/2.XML", "<a/>", "<A/>");
    const ProcessResult result = CompareFolders();
    EXPECT_EQ(result.status, Success);
    EXPECT_EQ(result.output, "2 equal, 0 different, 0 missing, 0 in trouble\n");
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(CompareFoldersTest, TellsWhatDiffersAndWhatIsMissing)
{
    WriteBoth("1.xml", "<a/>", "<a/>");
    WriteBoth("below/2.xml", "<a>1</a>", "<a>2</a>");
    Write("left/3.xml", "<a/>");
    Write("right/below/0.xml", "<a/>");
    const ProcessResult result = CompareFolders();
    EXPECT_EQ(result.status, Findings);
    EXPECT_EQ(result.output, "Missing file: right/3.xml\n"
                             "left/3.xml: has no counterpart\n"
                             "Missing file: left/below/0.xml\n"
                             "right/below/0.xml: has no counterpart\n"
                             "Diff at nodes:\n"
                             "\t- a\n"
                             "\t- a\n"
                             "\tText node values \"1\" and \"2\" don't match.\n"
                             "left/below/2.xml:1: /a/text()\n"
                             "    <a>1</a>\n"
                             "right/below/2.xml:1: /a/text()\n"
                             "    <a>2</a>\n"
                             "1 equal, 1 different, 2 missing, 0 in trouble\n");
}

TEST_F(CompareFoldersTest, IsEqualWhenBothFoldersAreEmpty)
{
    const ProcessResult result = CompareFolders();
    EXPECT_EQ(result.status, Success);
    EXPECT_EQ(result.output, "0 equal, 0 different, 0 missing, 0 in trouble\n");
}

TEST_F(CompareFoldersTest, PassesOverFilesOfOtherExtensions)
{
    WriteBoth("1.project", "<a>1</a>", "<a>2</a>");
    WriteBoth("2.xmlx", "no XML", "at all");
    EXPECT_EQ(CompareFolders().status, Success);
    EXPECT_EQ(CompareFolders({"--extension", "project"}).status, Findings);
    EXPECT_EQ(CompareFolders({"--extension", ".PROJECT", "--quiet"}).status, Findings);
}

TEST_F(CompareFoldersTest, PassesOverLinksThatLeadNowhere)
{
    WriteBoth("1.xml", "<a/>", "<a/>");
    std::filesystem::create_symlink("nowhere.xml", PathOf("left/2.xml"));
    std::filesystem::create_symlink("3.xml", PathOf("left/3.xml"));
    const ProcessResult result = CompareFolders();
    EXPECT_EQ(result.output, "1 equal, 0 different, 0 missing, 0 in trouble\n");
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST_F(CompareFoldersTest, NamesTheFolderThatItCannotRead)
{
    std::string name = "left";
    for (int i = 0; i < 100; ++i)
        name += "/below";
    Write(name + "/1.xml", "<a/>");
    const ProcessResult result =
        NuvTest::RunProcess({"sh", "-c", "ulimit -n 50; exec \"$0\" compare \"$1\" \"$2\"", NUVXML_PROGRAM,
                             PathOf("left"), PathOf("right")});
    EXPECT_EQ(result.status, Failure);
    EXPECT_THAT(result.errors, testing::MatchesRegex("nuvxml: .*/left/below/.*below: Too many open files\n"));
}

TEST_F(CompareFoldersTest, ShowsNamesOnOneLine)
{
    Write("left/1\n\t\x1B[31m.xml", "<a/>");
    EXPECT_EQ(CompareFolders().output, "Missing file: right/1���[31m.xml\n"
                                       "left/1���[31m.xml: has no counterpart\n"
                                       "0 equal, 0 different, 1 missing, 0 in trouble\n");
}

TEST_F(CompareFoldersTest, GoesOnBehindAFileThatCannotBeRead)
{
    WriteBoth("1.xml", "<a>", "<a/>");
    WriteBoth("2.xml", "<a/>", "<a/>");
    const ProcessResult result = CompareFolders();
    EXPECT_EQ(result.status, Failure);
    EXPECT_THAT(result.errors, testing::StartsWith("nuvxml: left/1.xml:1: "));
    EXPECT_EQ(result.output, "1 equal, 0 different, 0 missing, 1 in trouble\n");
}

TEST_F(CompareFoldersTest, WritesAnObjectForAMissingFile)
{
    Write("right/1.xml", "<a/>");
    const ProcessResult result = CompareFolders({"--format", "json"});
    EXPECT_EQ(result.status, Findings);
    EXPECT_EQ(nlohmann::json::parse(result.output), nlohmann::json::parse(R"({
        "kind": "missing-file", "report": "Missing file: left/1.xml",
        "left": null, "right": {"file": "right/1.xml"}})"));
}

TEST_F(CompareFoldersTest, IsSilentWhenAskedToBe)
{
    WriteBoth("1.xml", "<a>1</a>", "<a>2</a>");
    Write("left/2.xml", "<a/>");
    const ProcessResult result = CompareFolders({"--quiet"});
    EXPECT_EQ(result.status, Findings);
    EXPECT_THAT(result.output, IsEmpty());
}

TEST_F(CompareFoldersTest, ShowsNoProgressWhenItIsQuick)
{
    WriteBoth("1.xml", "<a/>", "<a/>");
    const ProcessResult result = RunOnTerminal({"compare", PathOf("left"), PathOf("right")});
    EXPECT_EQ(result.output, "1 equal, 0 different, 0 missing, 0 in trouble\r\n");
}

TEST_F(CompareFoldersTest, ShowsProgressOnATerminalWhenItTakesLong)
{
    for (int i = 1; i <= 500; ++i)
        WriteBoth(std::to_string(1000 + i) + ".xml", "<a>1</a>", "<a>2</a>");
    // What it has to tell does not fit into a terminal that nobody reads, so it has to wait.
    const ProcessResult result =
        NuvTest::RunOnTerminal(Command({"compare", PathOf("left"), PathOf("right")}), {{"TERM", "dumb"}},
                               [] { std::this_thread::sleep_for(std::chrono::milliseconds(1200)); });
    EXPECT_EQ(result.status, Findings);
    EXPECT_THAT(result.output, HasSubstr("\rCompared "));
    EXPECT_THAT(result.output, HasSubstr(" of 500 files\r\x1B[K"));
    EXPECT_THAT(result.output, testing::EndsWith("0 equal, 500 different, 0 missing, 0 in trouble\r\n"));
}

} // namespace
