// Files that cannot be read, or that change while they are read.

#include "NuvXMLUtils/LocationInputSource.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/ResourceLimitScope.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <chrono>
#include <climits>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace NuvTest;
using Nuv::UniString;
using Parser = ValidatingXMLParser::LineInfoParser;
using Document = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;
using Channel = std::unique_ptr<Nuv::XMLIChannel>;

class ReadingFaults : public testing::Test
{
  protected:
    ReadingFaults() { std::filesystem::permissions(folder.Path(), std::filesystem::perms(0777)); }

    std::filesystem::path PathOf(std::string_view name) const { return folder.Path() / name; }
    IO::Location LocationOf(std::string_view name) const { return IO::Location(folder.PathOf(name)); }

    ScratchFolder folder;
};

struct Outcome
{
    Document document;
    NodeLocationInfo location;
    UniString message;
};

Outcome ParseFile(const IO::Location& file)
{
    Outcome outcome;
    outcome.document.reset(
        ParseXMLDoc(file, Parser::Val_Never, false, nullptr, &outcome.location, &outcome.message));
    return outcome;
}

/// The message with which the factory refuses the file; empty when it makes a channel.
UniString RefusalOf(const IO::Location& file)
{
    EXPECT_EQ(Channel(NuvXML::CreateXMLIChannel(file, false)), nullptr);
    try
    {
        Channel(NuvXML::CreateXMLIChannel(file, true));
        return UniString();
    }
    catch (const NuvXML::XMLIChannelException& exception)
    {
        return exception.GetMessage();
    }
}

/// The file cannot be opened, which loading and the factories tell.
void ExpectNotToOpen(const IO::Location& file)
{
    const Outcome outcome = ParseFile(file);
    EXPECT_FALSE(outcome.document);
    EXPECT_EQ(outcome.location.lineNumber, 0u);
    EXPECT_EQ(outcome.message, UniString(u"unable to open primary document entity '") + file.ToURL() + u"'");
    EXPECT_EQ(RefusalOf(file), u"NuvXML DOMReaderException");
}

/// The one value of `<r><v>...</v></r>`.
UniString ValueIn(const IO::Location& file)
{
    UniString value;
    const Channel channel(NuvXML::CreateXMLIChannel(file, true));
    EXPECT_EQ(channel->ReadXML("v", value), Nuv::Success);
    return value;
}

// Files that cannot be opened.

TEST_F(ReadingFaults, AreToldOfAFileThatMayNotBeRead)
{
    folder.Write("secret.xml", "<r/>");
    std::filesystem::permissions(PathOf("secret.xml"), std::filesystem::perms::none);
    const WithoutPrivileges unprivileged;
    ExpectNotToOpen(LocationOf("secret.xml"));
}

TEST_F(ReadingFaults, AreToldOfAFolderThatMayNotBeEntered)
{
    std::filesystem::create_directory(PathOf("closed"));
    folder.Write("closed/a.xml", "<r/>");
    std::filesystem::permissions(PathOf("closed"), std::filesystem::perms::none);
    {
        const WithoutPrivileges unprivileged;
        ExpectNotToOpen(LocationOf("closed/a.xml"));
    }
    std::filesystem::permissions(PathOf("closed"), std::filesystem::perms::owner_all);
}

TEST_F(ReadingFaults, AreToldOfLinksThatLeadNowhere)
{
    std::filesystem::create_symlink(PathOf("missing.xml"), PathOf("dangling.xml"));
    std::filesystem::create_symlink(PathOf("circle.xml"), PathOf("circle.xml"));
    ExpectNotToOpen(LocationOf("dangling.xml"));
    ExpectNotToOpen(LocationOf("circle.xml"));
}

TEST_F(ReadingFaults, AreToldOfNamesThatCannotBe)
{
    folder.Write("file", "<r/>");
    ExpectNotToOpen(LocationOf("file/a.xml"));
    ExpectNotToOpen(LocationOf(std::string(1000, 'a')));
    std::string path;
    while (path.size() < PATH_MAX)
        path += "a/";
    EXPECT_EQ(RefusalOf(LocationOf(path + "a.xml")), u"NuvXML DOMReaderException");
}

TEST_F(ReadingFaults, AreToldWhenNoFileCanBeOpenedAnyMore)
{
    const IO::Location file(folder.Write("a.xml", "<r><v>1</v></r>"));
    ExpectNotToOpen(
        LocationOf("none.xml")); // so that a sanitizer has seen the types that it needs files to check
    {
        const NoMoreFilesScope scope;
        ExpectNotToOpen(file);
    }
    EXPECT_EQ(ValueIn(file), u"1");
}

// Files of other kinds.

TEST_F(ReadingFaults, AreNoneWithALinkToAFile)
{
    folder.Write("target.xml", "<r><v>1</v></r>");
    std::filesystem::create_symlink("target.xml", PathOf("link.xml"));
    EXPECT_EQ(ValueIn(LocationOf("link.xml")), u"1");
}

/// Makes a pipe. Once somebody reads from it, calls `before` and then writes `text` into it, in pieces.
class Pipe
{
  public:
    Pipe(
        const std::filesystem::path& file, std::string text, std::function<void()> before = [] {})
        : path(file)
    {
        if (mkfifo(path.c_str(), 0666) != 0)
            throw std::runtime_error("A pipe could not be made.");
        writer = std::thread(
            [this, text, before]
            {
                sigset_t brokenPipe; // if the reader goes away
                sigemptyset(&brokenPipe);
                sigaddset(&brokenPipe, SIGPIPE);
                pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
                const int descriptor = OpenWhenReaderIsThere();
                before();
                for (size_t i = 0; descriptor >= 0 && i < text.size(); i += PieceSize)
                    if (write(descriptor, text.data() + i, std::min(PieceSize, text.size() - i)) < 0)
                        break;
                close(descriptor);
            });
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() { writer.join(); }

  private:
    static constexpr size_t PieceSize = 1000;

    /// -1 when nobody comes.
    int OpenWhenReaderIsThere() const
    {
        using namespace std::chrono_literals;
        for (int attempt = 0; attempt < 20'000; ++attempt)
        {
            if (const int descriptor = open(path.c_str(), O_WRONLY | O_NONBLOCK); descriptor >= 0)
            {
                fcntl(descriptor, F_SETFL, 0);
                return descriptor;
            }
            std::this_thread::sleep_for(1ms);
        }
        return -1;
    }

    std::filesystem::path path;
    std::thread writer;
};

TEST_F(ReadingFaults, AreNoneWithAPipeThatGivesItsTextInPieces)
{
    const std::string text(200'000, 'x');
    const Pipe pipe(PathOf("pipe"), "<r><v>" + text + "</v></r>");
    EXPECT_EQ(ValueIn(LocationOf("pipe")), UniString(text));
}

TEST_F(ReadingFaults, AreToldOfAPipeThatEndsTooEarly)
{
    const Pipe pipe(PathOf("pipe"), "<r>\n<v>");
    const Outcome outcome = ParseFile(LocationOf("pipe"));
    EXPECT_FALSE(outcome.document);
    EXPECT_EQ(outcome.location.lineNumber, 2u);
    EXPECT_EQ(outcome.message, u"input ended before all started tags were ended; last tag started is 'v'");
}

// Files that change while they are read.

class OpenStream : public ReadingFaults
{
  protected:
    /// The next `count` bytes, or as many as there are.
    std::string Read(size_t count)
    {
        std::string bytes(count, '?');
        bytes.resize(stream.readBytes(reinterpret_cast<XMLByte*>(bytes.data()), count));
        return bytes;
    }

    const IO::Location file{folder.Write("file", "0123456789")};
    LocationBinInputStream stream{file};
};

TEST_F(OpenStream, EndsWhereTheFileHasBeenCutOff)
{
    EXPECT_EQ(Read(4), "0123");
    std::filesystem::resize_file(PathOf("file"), 6);
    EXPECT_EQ(Read(4), "45");
    EXPECT_EQ(Read(4), "");
    EXPECT_EQ(stream.curPos(), 6u);
}

TEST_F(OpenStream, EndsWhenTheFileHasBeenCutOffBeforeItsPlace)
{
    EXPECT_EQ(Read(4), "0123");
    std::filesystem::resize_file(PathOf("file"), 2);
    EXPECT_EQ(Read(4), "");
    EXPECT_EQ(stream.curPos(), 4u);
}

TEST_F(OpenStream, ReadsWhatHasBeenAppended)
{
    EXPECT_EQ(Read(10), "0123456789");
    EXPECT_EQ(Read(1), "");
    std::ofstream(PathOf("file"), std::ios::app) << "ab";
    EXPECT_EQ(Read(10), "ab");
    EXPECT_EQ(stream.curPos(), 12u);
}

TEST_F(OpenStream, ReadsAFileOnThatHasBeenRemoved)
{
    EXPECT_EQ(Read(4), "0123");
    std::filesystem::remove(PathOf("file"));
    EXPECT_EQ(Read(10), "456789");
}

TEST_F(OpenStream, ReadsAFileOnThatHasBeenReplaced)
{
    EXPECT_EQ(Read(4), "0123");
    folder.Write("other", "abcdefghij");
    std::filesystem::rename(PathOf("other"), PathOf("file"));
    EXPECT_EQ(Read(10), "456789");
}

/// A file of more text than a parser reads at once, of which something happens when a parser has read the
/// beginning: it has met an entity, and waits for its text.
class FileThatChanges : public ReadingFaults
{
  protected:
    static constexpr int Count = 20'000;

    FileThatChanges()
    {
        text = "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT v ANY><!ENTITY wait SYSTEM '" +
               PathOf("wait").string() + "'>]>\n<r>&wait;\n";
        for (int i = 0; i < Count; ++i)
            text += "<v>text</v>\n";
        text += "</r>";
        folder.Write("file.xml", text);
    }

    unsigned int LineOfByte(std::ptrdiff_t position) const
    {
        return 1 + static_cast<unsigned int>(std::count(text.begin(), text.begin() + position, '\n'));
    }

    /// How many values a parse finds during which this happens.
    size_t CountWhile(const std::function<void()>& happening)
    {
        const Pipe pipe(PathOf("wait"), "<v>of the entity</v>", happening);
        outcome = ParseFile(file);
        return outcome.document ? outcome.document->getElementsByTagName(u"v")->getLength() : 0;
    }

    const IO::Location file = LocationOf("file.xml");
    std::string text;
    Outcome outcome;
};

TEST_F(FileThatChanges, IsReadWholeWhenItStays)
{
    EXPECT_EQ(CountWhile([] {}), Count + 1u);
}

TEST_F(FileThatChanges, IsRefusedWhenItIsCutOff)
{
    EXPECT_EQ(CountWhile([&] { std::filesystem::resize_file(PathOf("file.xml"), 200'000); }), 0u);
    EXPECT_EQ(outcome.location.lineNumber, LineOfByte(200'000));
    EXPECT_EQ(outcome.message, u"unterminated end tag 'v'");
}

TEST_F(FileThatChanges, IsRefusedWhenItIsEmptied)
{
    EXPECT_EQ(CountWhile([&] { std::filesystem::resize_file(PathOf("file.xml"), 0); }), 0u);
    EXPECT_GT(outcome.location.lineNumber, 1'000u);
}

TEST_F(FileThatChanges, IsReadWholeWhenItIsRemoved)
{
    EXPECT_EQ(CountWhile([&] { std::filesystem::remove(PathOf("file.xml")); }), Count + 1u);
}

TEST_F(FileThatChanges, IsReadWithWhatIsAppended)
{
    EXPECT_EQ(CountWhile([&] { std::ofstream(PathOf("file.xml"), std::ios::app) << "<!-- more -->"; }),
              Count + 1u);
    EXPECT_EQ(UniString(outcome.document->getLastChild()->getNodeValue()), u" more ");
}

TEST_F(FileThatChanges, GivesNoChannelWhenItIsCutOff)
{
    const Pipe pipe(PathOf("wait"), "", [&] { std::filesystem::resize_file(PathOf("file.xml"), 100'000); });
    EXPECT_EQ(Channel(NuvXML::CreateXMLIChannel(file, false)), nullptr);
}

// Entities and schemas.

/// A document whose content is the external entity `name`.
std::string DocumentOf(const std::filesystem::path& name)
{
    return "<!DOCTYPE r [<!ENTITY e SYSTEM '" + name.string() + "'>]>\n<r>&e;</r>";
}

TEST_F(ReadingFaults, AreToldOfAnEntityThatCannotBeOpened)
{
    std::filesystem::create_directory(PathOf("folder"));
    std::filesystem::create_symlink(PathOf("missing"), PathOf("dangling"));
    folder.Write("secret", "text");
    std::filesystem::permissions(PathOf("secret"), std::filesystem::perms::none);
    for (const char* const entity : {"folder", "dangling", "secret"})
    {
        const IO::Location file(folder.Write("a.xml", DocumentOf(PathOf(entity))));
        const WithoutPrivileges unprivileged;
        const Outcome outcome = ParseFile(file);
        EXPECT_FALSE(outcome.document);
        EXPECT_EQ(outcome.location.lineNumber, 2u);
        EXPECT_EQ(outcome.message,
                  UniString(u"unable to open external entity '") + LocationOf(entity).ToURL() + u"'");
    }
}

TEST_F(ReadingFaults, AreToldOfAnEntityThatEndsTooEarly)
{
    folder.Write("entity", "<v>text");
    const Outcome outcome = ParseFile(IO::Location(folder.Write("a.xml", DocumentOf(PathOf("entity")))));
    EXPECT_FALSE(outcome.document);
    EXPECT_EQ(outcome.message, u"expected end of tag 'v'");
}

class SchemaFaults : public ReadingFaults
{
  protected:
    bool Load(const IO::Location& schema) { return parser.LoadSchema(schema, &place, &message); }

    /// Expects that the schema is refused without a change to the parser.
    void ExpectToBeRefused(const IO::Location& schema, unsigned int line, const UniString& reason)
    {
        EXPECT_FALSE(Load(schema));
        EXPECT_EQ(place.lineNumber, line);
        EXPECT_EQ(message, reason);
        EXPECT_TRUE(Parse("<r/>"));
        EXPECT_TRUE(Parse("<other/>"));
    }

    Document Parse(std::string_view text)
    {
        return Document(parser.Parse(reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<unsigned int>(text.size()), Parser::Val_Auto, false,
                                     UniString(u"text"), nullptr, nullptr, nullptr));
    }

    /// Writes a schema for the element `r` that also names another schema.
    IO::Location WriteSchemaWith(const std::string& reference) const
    {
        return IO::Location(
            folder.Write("whole.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n" +
                                          reference + "<xs:element name='r'/></xs:schema>"));
    }

    ValidatingXMLParser parser;
    NodeLocationInfo place;
    UniString message;
};

constexpr char16_t CouldNotOpen[] = u"Could not open the XML Schema file.";

TEST_F(SchemaFaults, AreToldOfAFileThatCannotBeOpened)
{
    std::filesystem::create_directory(PathOf("folder.xsd"));
    std::filesystem::create_symlink(PathOf("missing.xsd"), PathOf("dangling.xsd"));
    ExpectToBeRefused(LocationOf("missing.xsd"), 0, CouldNotOpen);
    ExpectToBeRefused(LocationOf("folder.xsd"), 0, CouldNotOpen);
    ExpectToBeRefused(LocationOf("dangling.xsd"), 0, CouldNotOpen);
    ExpectToBeRefused(LocationOf(std::string(1000, 'a')), 0, CouldNotOpen);
}

TEST_F(SchemaFaults, AreToldOfAFileThatMayNotBeRead)
{
    const IO::Location schema = WriteSchemaWith("");
    std::filesystem::permissions(PathOf("whole.xsd"), std::filesystem::perms::none);
    const WithoutPrivileges unprivileged;
    ExpectToBeRefused(schema, 0, CouldNotOpen);
}

TEST_F(SchemaFaults, AreToldWhenNoFileCanBeOpenedAnyMore)
{
    const IO::Location schema = WriteSchemaWith("");
    ExpectToBeRefused(LocationOf("none.xsd"), 0, CouldNotOpen); // as a sanitizer needs it, see above
    const NoMoreFilesScope scope;
    ExpectToBeRefused(schema, 0, CouldNotOpen);
}

TEST_F(SchemaFaults, AreToldOfAFileThatEndsTooEarly)
{
    ExpectToBeRefused(IO::Location(folder.Write("cut.xsd", "<xs:schema xmlns:xs="
                                                           "'http://www.w3.org/2001/XMLSchema'>\n<xs:el")),
                      2, u"unexpected end of input");
    ExpectToBeRefused(IO::Location(folder.Write("empty.xsd", "")), 1, u"invalid document structure");
}

TEST_F(SchemaFaults, AreToldOfAnIncludeThatIsNotWellFormed)
{
    folder.Write("part.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n");
    ExpectToBeRefused(WriteSchemaWith("<xs:include schemaLocation='part.xsd'/>"), 2,
                      u"input ended before all started tags were ended; last tag started is 'xs:schema'");
}

TEST_F(SchemaFaults, AreDroppedAsWarningsWhenAnIncludeIsMissing)
{
    EXPECT_TRUE(Load(WriteSchemaWith("<xs:include schemaLocation='missing.xsd'/>"))) << message;
    EXPECT_TRUE(Parse("<r/>"));
    EXPECT_FALSE(Parse("<other/>")) << "it validates";
    EXPECT_TRUE(Load(WriteSchemaWith("<xs:import namespace='urn:x' schemaLocation='missing.xsd'/>")))
        << message;
}

TEST_F(SchemaFaults, AreToldWhenWhatIsMissingIsNeeded)
{
    ExpectToBeRefused(WriteSchemaWith("<xs:include schemaLocation='missing.xsd'/>\n"
                                      "<xs:element name='s' type='Missing'/>"),
                      3, u"type ':Missing' not found");
}

} // namespace
