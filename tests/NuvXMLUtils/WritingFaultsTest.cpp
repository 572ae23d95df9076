// What is on disk when a file cannot be written: of a channel's file the old one, and nothing beside it.

#include "InputOutput/File.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/NuvXMLDOMBuilder.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/SAXWriters.hpp"
#include "tests/support/ResourceLimitScope.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include <sys/stat.h>

namespace
{

using namespace NuvTest;
using Nuv::UniString;
using NuvXML::DOMBuilder;
using std::filesystem::perms;

constexpr std::string_view NewText = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n<r>\n"
                                     "\t<v>1</v>\n</r>\n";

void WriteRoot(Nuv::XMLOChannel& channel)
{
    channel.WriteStartElement("r");
    channel.WriteXML("v", 1);
    channel.WriteEndElement();
    channel.WriteEndDocument();
}

/// A channel bound to the file, made, filled and ended. Nothing is thrown, and no file stays open.
void WriteNewFile(const UniString& path)
{
    const auto countOpenFiles = []
    { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = countOpenFiles();
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(IO::Location(path), true);
    WriteRoot(*channel);
    NuvXML::DisposeXMLOChannel(channel);
    EXPECT_EQ(countOpenFiles(), before);
}

class WritingFaults : public testing::Test
{
  protected:
    WritingFaults() { SetPermissions("", 0777); }

    void SetPermissions(std::string_view name, unsigned permissions) const
    {
        std::filesystem::permissions(folder.Path() / name, perms(permissions));
    }

    /// Makes "link.xml" lead to `name`.
    UniString Link(std::string_view name) const
    {
        std::filesystem::create_symlink(folder.Path() / name, folder.Path() / "link.xml");
        return folder.PathOf("link.xml");
    }

    void ExpectFile(std::string_view name, std::string_view text) const
    {
        EXPECT_TRUE(std::filesystem::is_regular_file(symlink_status(folder.Path() / name)));
        EXPECT_EQ(folder.Read(name), text);
    }

    void ExpectNothingBeside(std::string_view name) const
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
            EXPECT_EQ(entry.path().filename(), name);
    }

    ScratchFolder folder;
};

// A device that is full.

TEST_F(WritingFaults, LeaveTheOldFileOnAFullDevice)
{
    for (size_t room = 0; room <= NewText.size() + 1; ++room)
    {
        const UniString path = folder.Write("a.xml", "old");
        {
            const FullDeviceScope full(room);
            WriteNewFile(path);
        }
        ExpectFile("a.xml", room < NewText.size() ? "old" : NewText);
        ExpectNothingBeside("a.xml");
    }
}

TEST_F(WritingFaults, LeaveTheOldFileOfADocumentThatIsTakenOver)
{
    {
        DOMBuilder builder;
        WriteRoot(builder);
        auto* copy = static_cast<xercesc_3_0::DOMDocument*>(builder.GetDOMDocument()->cloneNode(true));
        copy->setDocumentURI(folder.Write("a.xml", "old").ToUTF16());
        const FullDeviceScope full(10);
        const DOMBuilder owner(copy, nullptr, DOMBuilder::TakeDocumentOver, 0);
    }
    ExpectFile("a.xml", "old");
    ExpectNothingBeside("a.xml");
}

/// Writes through an open file on a device with room for `room` bytes.
template <class Write>
void WriteToDevice(const UniString& path, size_t room, Write write)
{
    IO::File file(IO::Location(path), IO::CreateWhenNotFound);
    ASSERT_EQ(file.Open(IO::WriteMode, IO::ReportAccessDenied), IO::NoError);
    {
        const FullDeviceScope full(room);
        write(file);
    }
    EXPECT_EQ(file.Close(), IO::NoError);
}

TEST_F(WritingFaults, AreToldByAFileAndLeaveTheBytesForWhichThereWasRoom)
{
    const std::string bytes(100'000, 'x');
    for (const size_t room : {0u, 1u, 4096u, 65'537u, 99'999u})
    {
        int code = 0;
        WriteToDevice(folder.PathOf("file"), room,
                      [&](IO::File& file) { code = file.Write(bytes.data(), bytes.size()); });
        EXPECT_EQ(code, IO::OtherError) << "the file may not become longer";
        ExpectFile("file", bytes.substr(0, room));
    }
}

TEST_F(WritingFaults, AreToldByThePrinterAndLeaveTheBeginning)
{
    DOMBuilder builder;
    WriteRoot(builder);
    Nuv::MemoryOChannel whole;
    ASSERT_TRUE(FormatXMLDoc(builder.GetDOMDocument(), &whole, nullptr, false));
    for (size_t room = 0; room <= whole.GetBytes().size(); ++room)
    {
        bool isPrinted = false;
        WriteToDevice(folder.PathOf("file"), room,
                      [&](IO::File& file)
                      { isPrinted = FormatXMLDoc(builder.GetDOMDocument(), &file, nullptr, false); });
        EXPECT_EQ(isPrinted, room == whole.GetBytes().size());
        ExpectFile("file", whole.GetBytes().substr(0, room));
    }
}

TEST_F(WritingFaults, OfAStreamLeaveTheBeginning)
{
    const std::string whole = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n  <b>text</b>\n</a>\n";
    for (size_t room = 0; room <= whole.size(); ++room)
    {
        WriteToDevice(folder.PathOf("file"), room,
                      [](IO::File& file)
                      {
                          NuvXML::NuvSAX2Writer writer(file);
                          writer.StartElement(u"a");
                          writer.SimpleElement(u"b", u"text");
                          writer.EndElement(u"a");
                      });
        ExpectFile("file", whole.substr(0, room));
    }
}

TEST_F(WritingFaults, LeaveTheOldFileWhenNoFileCanBeOpenedAnyMore)
{
    const UniString path = folder.Write("a.xml", "old");
    {
        DOMBuilder first(IO::Location(folder.PathOf("b.xml"))); // a sanitizer needs files to check new types
        WriteRoot(first);
    }
    DOMBuilder* builder = new DOMBuilder(IO::Location(path));
    WriteRoot(*builder);
    {
        const NoMoreFilesScope scope;
        delete builder;
    }
    ExpectFile("a.xml", "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 2);
}

// Permissions.

TEST_F(WritingFaults, LeaveTheOldFileInAReadOnlyFolder)
{
    const UniString path = folder.Write("a.xml", "old");
    SetPermissions("a.xml", 0666);
    SetPermissions("", 0555);
    {
        const WithoutPrivileges unprivileged;
        WriteNewFile(path);
        WriteNewFile(folder.PathOf("new.xml"));
    }
    ExpectFile("a.xml", "old");
    ExpectNothingBeside("a.xml");
    SetPermissions("", 0777);
}

TEST_F(WritingFaults, LeaveTheOldFileInAClosedFolder)
{
    std::filesystem::create_directory(folder.Path() / "closed");
    const UniString path = folder.Write("closed/a.xml", "old");
    SetPermissions("closed", 0);
    {
        const WithoutPrivileges unprivileged;
        WriteNewFile(path);
    }
    SetPermissions("closed", 0777);
    ExpectFile("closed/a.xml", "old");
}

TEST_F(WritingFaults, AreNoneWithAReadOnlyFileInAWritableFolder)
{
    const UniString path = folder.Write("a.xml", "old");
    SetPermissions("a.xml", 0444);
    {
        const WithoutPrivileges unprivileged;
        WriteNewFile(path);
    }
    ExpectFile("a.xml", NewText);
}

// What else may stand at the location.

TEST_F(WritingFaults, AreNoneWithALinkWhichIsReplacedAndNotFollowed)
{
    folder.Write("target.xml", "kept");
    WriteNewFile(Link("target.xml"));
    ExpectFile("link.xml", NewText);
    ExpectFile("target.xml", "kept");
}

TEST_F(WritingFaults, AreNoneWithALinkThatLeadsNowhere)
{
    WriteNewFile(Link("missing.xml"));
    ExpectFile("link.xml", NewText);
    EXPECT_FALSE(folder.Has("missing.xml"));
}

TEST_F(WritingFaults, AreNoneWithALinkToAFolder)
{
    std::filesystem::create_directory(folder.Path() / "folder");
    WriteNewFile(Link("folder"));
    ExpectFile("link.xml", NewText);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path() / "folder"));
}

TEST_F(WritingFaults, AreNoneWithAPipeWhichIsReplaced)
{
    ASSERT_EQ(mkfifo((folder.Path() / "a.xml").c_str(), 0600), 0);
    WriteNewFile(folder.PathOf("a.xml"));
    ExpectFile("a.xml", NewText);
}

TEST_F(WritingFaults, LeaveAFolderAndNothingBesideIt)
{
    std::filesystem::create_directory(folder.Path() / "a.xml");
    WriteNewFile(folder.PathOf("a.xml"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path() / "a.xml"));
    ExpectNothingBeside("a.xml");
}

TEST_F(WritingFaults, LeaveAFileThatStandsWhereTheFolderShouldBe)
{
    folder.Write("file", "kept");
    WriteNewFile(folder.PathOf("file/a.xml"));
    ExpectFile("file", "kept");
    ExpectNothingBeside("file");
}

TEST_F(WritingFaults, LeaveNothingUnderANameThatIsTooLong)
{
    WriteNewFile(folder.PathOf(std::string(1000, 'a')));
    WriteNewFile(folder.PathOf(std::string(3000, '/') + std::string(3000, 'a')));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(WritingFaults, LeaveNothingAtAnEmptyLocation)
{
    WriteNewFile(UniString());
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(WritingFaults, AreHiddenFromAGuardWhichDeletesTheChannel)
{
    const UniString path = folder.PathOf("missing/a.xml");
    Nuv::Array<UniString> messages;
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(IO::Location(path), true);
    {
        const NuvXML::XMLOChannelGuard guard(&channel, &messages);
        WriteRoot(*channel);
    }
    EXPECT_EQ(channel, nullptr);
    EXPECT_TRUE(messages.empty());
}

} // namespace
