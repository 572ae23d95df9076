#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include "tests/support/CurrentFolderScope.hpp"
#include "tests/support/PrivateAccess.hpp"
#include "tests/support/ScratchFolder.hpp"
#include "tests/support/WithoutPrivileges.hpp"
#include "tests/support/XercesDownScope.hpp"
#include "tests/support/XercesLeakScope.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace NuvTest
{

struct OwnedParser
{
    using Member = std::unique_ptr<ValidatingXMLParser::LineInfoParser> ValidatingXMLParser::*;
    friend Member Reveal(OwnedParser);
};
template struct Revealed<OwnedParser, &ValidatingXMLParser::parser>;

struct ParseSource
{
    using Member = xercesc_3_0::DOMDocument* (ValidatingXMLParser::*)(xercesc_3_0::InputSource&,
                                                                      ValidatingXMLParser::ValSchemes, bool,
                                                                      NodeLocations*, NodeLocationInfo*,
                                                                      Nuv::UniString*);
    friend Member Reveal(ParseSource);
};
template struct Revealed<ParseSource, &ValidatingXMLParser::Parse>;

} // namespace NuvTest

namespace
{

using LineInfoParser = ValidatingXMLParser::LineInfoParser;
using Nuv::UniString;
using xercesc_3_0::DOMNode;

static_assert(LineInfoParser::Val_Never == 0 && LineInfoParser::Val_Always == 1 &&
              LineInfoParser::Val_Auto == 2);
static_assert(!std::is_copy_constructible_v<ValidatingXMLParser>);

constexpr unsigned int UntouchedLine = 4711;
constexpr char16_t UntouchedMessage[] = u"untouched";

/// What an operation gives back through its arguments.
struct Report
{
    NodeLocationInfo location{UntouchedLine};
    UniString message{UntouchedMessage};
};

const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned int Size(std::string_view text) { return static_cast<unsigned int>(text.size()); }

class ValidatingXMLParserTest : public testing::Test
{
  protected:
    using Document = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;

    IO::Location Write(std::string_view name, std::string_view text) const
    {
        return IO::Location(scratch.Write(name, text));
    }

    Document ParseFile(const IO::Location& file)
    {
        return Document(parser.Parse(file, scheme, createEntityRefNodes, nodeLocations, &report.location,
                                     &report.message));
    }

    Document Parse(std::string_view text)
    {
        return Document(parser.Parse(Bytes(text), Size(text), scheme, createEntityRefNodes,
                                     UniString(u"memory"), nodeLocations, &report.location, &report.message));
    }

    bool LoadSchema(const IO::Location& schema)
    {
        return parser.LoadSchema(schema, &report.location, &report.message);
    }

    bool LoadSchema(std::string_view text) { return LoadSchema(Write("schema.xsd", text)); }

    void ExpectUntouchedReport() const
    {
        EXPECT_EQ(report.location.lineNumber, UntouchedLine);
        EXPECT_EQ(report.message, UniString(UntouchedMessage));
    }

    void ExpectReport(unsigned int line, const UniString& message) const
    {
        EXPECT_EQ(report.location.lineNumber, line);
        EXPECT_EQ(report.message, message);
    }

    void ExpectNoHandlers()
    {
        const LineInfoParser& owned = *(parser.*Reveal(NuvTest::OwnedParser()));
        EXPECT_EQ(owned.getErrorHandler(), nullptr);
        EXPECT_EQ(owned.getEntityResolver(), nullptr);
    }

    void ExpectToParse(std::string_view text)
    {
        report = Report();
        EXPECT_TRUE(Parse(text)) << report.message;
        ExpectUntouchedReport();
    }

    NuvTest::ScratchFolder scratch;
    ValidatingXMLParser parser;
    ValidatingXMLParser::ValSchemes scheme = LineInfoParser::Val_Never;
    bool createEntityRefNodes = false;
    NodeLocations* nodeLocations = nullptr;
    Report report;
};

UniString RootTextOf(const NuvXML::XercesPtr<xercesc_3_0::DOMDocument>& document)
{
    return document ? UniString(document->getDocumentElement()->getTextContent()) : UniString(u"(none)");
}

constexpr char InvalidDocument[] = "<!DOCTYPE r [<!ELEMENT r EMPTY>]>\n<r>\n<a/></r>";
constexpr char TwoColons[] = "<!DOCTYPE a:b:c [<!ELEMENT r EMPTY>]><r/>";

/// Lets elements n:r hold an integer.
constexpr char Schema[] = "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:n'>\n"
                          "<xs:element name='r' type='xs:int'/></xs:schema>";
constexpr char ValidBySchema[] = "<n:r xmlns:n='urn:n'>12</n:r>";
constexpr char InvalidBySchema[] = "<n:r xmlns:n='urn:n'>\ntwelve</n:r>";

// Success.

TEST_F(ValidatingXMLParserTest, ParsesAFile)
{
    const Document document = ParseFile(Write("a.xml", "<r>text</r>"));
    EXPECT_EQ(RootTextOf(document), UniString(u"text"));
    ExpectUntouchedReport();
}

TEST_F(ValidatingXMLParserTest, ParsesMemory)
{
    EXPECT_EQ(RootTextOf(Parse("<r>text</r>")), UniString(u"text"));
    ExpectUntouchedReport();
}

TEST_F(ValidatingXMLParserTest, ParsesNoMoreOfMemoryThanItsSize)
{
    const std::string_view text = "<r/> and more";
    EXPECT_TRUE(
        Document(parser.Parse(Bytes(text), 4, scheme, false, UniString(), nullptr, nullptr, nullptr)));
}

TEST_F(ValidatingXMLParserTest, NeedsTheMemoryOnlyDuringTheCall)
{
    auto text = std::make_unique<std::string>("<r>text that stays</r>");
    const Document document = Parse(*text);
    text->assign(text->size(), '#');
    text.reset();
    EXPECT_EQ(RootTextOf(document), UniString(u"text that stays"));
}

TEST_F(ValidatingXMLParserTest, ParsesEveryEncodingThatTheDocumentDeclares)
{
    EXPECT_EQ(RootTextOf(Parse("<r>\xC3\xBC</r>")), UniString(u"\u00FC"));
    EXPECT_EQ(RootTextOf(Parse("<?xml version='1.0' encoding='ISO-8859-1'?><r>\xFC</r>")),
              UniString(u"\u00FC"));
    EXPECT_EQ(RootTextOf(Parse("<?xml version='1.0' encoding='windows-1252'?><r>\x80</r>")),
              UniString(u"\u20AC"));
    EXPECT_EQ(RootTextOf(Parse(std::string_view("\xFF\xFE<\0r\0>\0\xAC\x20<\0/\0r\0>\0", 18))),
              UniString(u"\u20AC"));
}

TEST_F(ValidatingXMLParserTest, ReadsFilesWhateverTheirName)
{
    for (const char* name : {"a b.xml", "%41.xml", "\u00FC\u20AC.xml", "a?b#c.xml"})
        EXPECT_EQ(RootTextOf(ParseFile(Write(name, "<r>text</r>"))), UniString(u"text")) << name;
}

TEST_F(ValidatingXMLParserTest, CanBeUsedAgain)
{
    const Document first = Parse("<r>first</r>");
    const Document second = Parse("<r>second</r>");
    EXPECT_EQ(RootTextOf(first), UniString(u"first"));
    EXPECT_EQ(RootTextOf(second), UniString(u"second"));
}

/// In XML 1.1 the next-line character ends a line and control characters may be written as references.
constexpr char XML11[] = "<?xml version='1.1'?><r>1\xC2\x85&#2;</r>";
constexpr char XML11WithError[] = "<?xml version='1.1'?><r>&#2;";

TEST_F(ValidatingXMLParserTest, TakesTheXMLVersionFromTheDocumentAlone)
{
    for (const char* before : {XML11, XML11WithError})
    {
        Parse(before);
        EXPECT_EQ(RootTextOf(Parse("<r>1\xC2\x85</r>")), UniString(u"1\u0085"));
        Parse(before);
        EXPECT_FALSE(Parse("<r>&#2;</r>"));
        EXPECT_EQ(RootTextOf(Parse(XML11)), UniString(u"1\n\u0002"));
    }
}

TEST_F(ValidatingXMLParserTest, KeepsLocationsAndSchemasAfterAnotherXMLVersion)
{
    NodeLocations store;
    nodeLocations = &store;
    ExpectToParse(XML11);
    const Document document = Parse("<r>\n\n<a/></r>");
    const NodeLocationInfo* const child = store.Find(document->getDocumentElement()->getLastChild());
    ASSERT_TRUE(child);
    EXPECT_EQ(child->lineNumber, 3u);

    ASSERT_TRUE(LoadSchema(Schema));
    for (const char* const text : {ValidBySchema, InvalidBySchema})
    {
        ExpectToParse("<?xml version='1.1'?><n:r xmlns:n='urn:n'>\xC2\x85"
                      "12</n:r>");
        EXPECT_EQ(Parse(text) != nullptr, text == ValidBySchema);
    }
}

TEST_F(ValidatingXMLParserTest, GivesDocumentsThatOutliveIt)
{
    auto shortLived = std::make_unique<ValidatingXMLParser>();
    const std::string_view text = "<r>text</r>";
    const Document document(shortLived->Parse(Bytes(text), Size(text), scheme, false, UniString(u"memory"),
                                              nullptr, nullptr, nullptr));
    shortLived.reset();
    EXPECT_EQ(RootTextOf(document), UniString(u"text"));
}

TEST_F(ValidatingXMLParserTest, NamesADocumentByTheURLOfItsFile)
{
    const IO::Location file = Write("a b%41\u00FC.xml", "<r/>");
    const Document document = ParseFile(file);
    ASSERT_TRUE(document);
    EXPECT_EQ(UniString(document->getDocumentURI()), file.ToURL());
    EXPECT_EQ(IO::Location(document->getDocumentURI()), file);
}

TEST_F(ValidatingXMLParserTest, NamesADocumentFromMemoryByItsSystemId)
{
    const Document document = Parse("<r/>");
    EXPECT_EQ(UniString(document->getDocumentURI()), UniString(u"memory"));
}

TEST_F(ValidatingXMLParserTest, NamesADocumentFromMemoryByThePathOfALocation)
{
    const std::string_view text = "<r/>";
    const Document document(parser.Parse(Bytes(text), Size(text), scheme, false,
                                         IO::Location(u"file:///folder/a.xml"), nullptr, nullptr, nullptr));
    EXPECT_EQ(UniString(document->getDocumentURI()), UniString(u"file:///folder/a.xml"));
    const Document relative(parser.Parse(Bytes(text), Size(text), scheme, false,
                                         IO::Location(u"folder/a.xml"), nullptr, nullptr, nullptr));
    EXPECT_EQ(UniString(relative->getDocumentURI()), UniString(u"folder/a.xml"));
}

TEST_F(ValidatingXMLParserTest, KeepsCommentsAndWhiteSpace)
{
    scheme = LineInfoParser::Val_Always;
    const Document document = Parse("<!DOCTYPE r [<!ELEMENT r (a)><!ELEMENT a ANY>]><r> <!--c--><a/></r>");
    ASSERT_TRUE(document) << report.message;
    EXPECT_EQ(document->getDocumentElement()->getChildNodes()->getLength(), 3u);
}

// Locations.

TEST_F(ValidatingXMLParserTest, FillsTheStoreOfLocations)
{
    NodeLocations store;
    nodeLocations = &store;
    const Document document = ParseFile(Write("a.xml", "<?xml version='1.0'?>\n<r>\n<a/></r>"));
    const NodeLocationInfo* root = store.Find(document->getDocumentElement());
    const NodeLocationInfo* child = store.Find(document->getDocumentElement()->getLastChild());
    ASSERT_TRUE(root && child);
    EXPECT_EQ(root->lineNumber, 2u);
    EXPECT_EQ(child->lineNumber, 3u);
}

TEST_F(ValidatingXMLParserTest, ForgetsTheStoreOfTheCallBefore)
{
    auto store = std::make_unique<NodeLocations>();
    nodeLocations = store.get();
    const Document first = Parse("<r/>");
    nodeLocations = nullptr;
    const Document document = Parse("<r/>");
    EXPECT_EQ(store->Find(document->getDocumentElement()), nullptr);
    store.reset();
    ExpectToParse("<r/>");
}

// Failure.

TEST_F(ValidatingXMLParserTest, ReportsLineAndMessageOfTextThatIsNotWellFormed)
{
    EXPECT_FALSE(Parse("<r>\n\n<a></b></r>"));
    ExpectReport(3, u"expected end of tag 'a'");
}

TEST_F(ValidatingXMLParserTest, ReportsAMissingFile)
{
    const IO::Location missing(scratch.PathOf("a b.xml"));
    EXPECT_FALSE(ParseFile(missing));
    ExpectReport(0, UniString(u"unable to open primary document entity '") + missing.ToURL() + u"'");
}

TEST_F(ValidatingXMLParserTest, ReportsAFolder)
{
    const IO::Location folder(scratch.PathOf(""));
    EXPECT_FALSE(ParseFile(folder));
    ExpectReport(0, UniString(u"unable to open primary document entity '") + folder.ToURL() + u"'");
}

TEST_F(ValidatingXMLParserTest, ReportsAFileThatCannotBeRead)
{
    const NuvTest::XercesLeakScope leaks;
    EXPECT_FALSE(ParseFile(IO::Location(u"/proc/self/mem")));
    ExpectReport(0, u"unable to read data from file");
    ExpectNoHandlers();
    ExpectToParse("<r/>");
}

TEST_F(ValidatingXMLParserTest, ReportsAnEmptyDocument)
{
    EXPECT_FALSE(Parse(""));
    ExpectReport(1, u"invalid document structure");
    report = Report();
    EXPECT_FALSE(
        parser.Parse(nullptr, 0, scheme, false, UniString(), nullptr, &report.location, &report.message));
    ExpectReport(1, u"invalid document structure");
    report = Report();
    EXPECT_FALSE(ParseFile(Write("empty.xml", "")));
    ExpectReport(1, u"invalid document structure");
}

TEST_F(ValidatingXMLParserTest, ReportsWhatIsNoExceptionOfParsing)
{
    EXPECT_FALSE(Parse(TwoColons));
    ExpectReport(0, u"Failed to parse XML document");
}

/// Uses the parser that is reading it.
class ReentrantSource : public xercesc_3_0::InputSource
{
  public:
    ReentrantSource(ValidatingXMLParser& user, Report& told)
        : parser(user)
        , report(told)
    {
    }
    xercesc_3_0::BinInputStream* makeStream() const override
    {
        EXPECT_FALSE(parser.Parse(Bytes("<r/>"), 4, LineInfoParser::Val_Auto, false, UniString(), nullptr,
                                  &report.location, &report.message));
        return nullptr;
    }

  private:
    ValidatingXMLParser& parser;
    Report& report;
};

TEST_F(ValidatingXMLParserTest, ReportsTheSourceLineOfOtherExceptionsOfXerces)
{
    ReentrantSource source(parser, report);
    EXPECT_FALSE((parser.*Reveal(NuvTest::ParseSource()))(source, scheme, false, nullptr, nullptr, nullptr));
    EXPECT_EQ(report.message, UniString(u"parsing in progress"));
    EXPECT_NE(report.location.lineNumber, UntouchedLine);
    EXPECT_NE(report.location.lineNumber, 0u);
    ExpectToParse("<r/>");
}

TEST_F(ValidatingXMLParserTest, TakesNullForEveryOutputOfAFailure)
{
    const IO::Location missing(scratch.PathOf("missing.xml"));
    EXPECT_FALSE(parser.Parse(missing, scheme, false, nullptr, nullptr, nullptr));
    for (const std::string_view text : {"<r>", TwoColons})
    {
        EXPECT_FALSE(
            parser.Parse(Bytes(text), Size(text), scheme, false, UniString(), nullptr, nullptr, nullptr));
        EXPECT_FALSE(
            parser.Parse(Bytes(text), Size(text), scheme, false, IO::Location(), nullptr, nullptr, nullptr));
    }
    EXPECT_FALSE(parser.LoadSchema(missing, nullptr, nullptr));
    EXPECT_FALSE(parser.LoadSchema(Write("bad.xsd", "<"), nullptr, nullptr));
}

TEST_F(ValidatingXMLParserTest, TellsThatASchemaCouldNotBeLoadedWhichXercesDoesNotFind)
{
    // The system goes up from where the link leads to, Xerces from where it stands.
    std::filesystem::create_directories(scratch.Path() / "there" / "below");
    std::filesystem::create_directory_symlink("there/below", scratch.Path() / "link");
    Write("there/schema.xsd", Schema);
    const NuvTest::CurrentFolderScope current(scratch.Path());
    EXPECT_FALSE(LoadSchema(IO::Location(UniString(u"link/../schema.xsd"))));
    ExpectReport(0, UniString(u"Could not load the XML Schema."));
}

TEST_F(ValidatingXMLParserTest, FillsOneOutputWithoutTheOther)
{
    EXPECT_FALSE(
        parser.Parse(Bytes("<r>\n<"), 5, scheme, false, UniString(), nullptr, &report.location, nullptr));
    ExpectReport(2, UntouchedMessage);
    report = Report();
    EXPECT_FALSE(
        parser.Parse(Bytes("<r>\n<"), 5, scheme, false, UniString(), nullptr, nullptr, &report.message));
    EXPECT_EQ(report.location.lineNumber, UntouchedLine);
    EXPECT_NE(report.message, UniString(UntouchedMessage));
}

TEST_F(ValidatingXMLParserTest, CanBeUsedAgainAfterEveryKindOfFailure)
{
    const IO::Location missing(scratch.PathOf("missing"));
    const std::function<bool()> failures[] = {
        [&] { return Parse("<r><a></r>") != nullptr; },
        [&] { return Parse("<r><a><b>text") != nullptr; },
        [&] { return Parse("") != nullptr; },
        [&] { return Parse(InvalidDocument) != nullptr; },
        [&] { return Parse(TwoColons) != nullptr; },
        [&] { return Parse("<!DOCTYPE r SYSTEM 'missing.dtd'><r/>") != nullptr; },
        [&] { return Parse("<!DOCTYPE r [<!ENTITY e '<a>&e;</a>'>]><r>&e;</r>") != nullptr; },
        [&] { return Parse("<?xml version='1.0' encoding='no-such-code'?><r/>") != nullptr; },
        [&] { return ParseFile(missing) != nullptr; },
        [&] { return LoadSchema(missing); },
        [&] { return LoadSchema("<"); },
        [&] { return LoadSchema("<r/>"); },
    };
    scheme = LineInfoParser::Val_Auto;
    for (size_t i = 0; i < std::size(failures); ++i)
    {
        SCOPED_TRACE(i);
        EXPECT_FALSE(failures[i]());
        ExpectNoHandlers();
        ExpectToParse("<!DOCTYPE r [<!ELEMENT r ANY><!ENTITY e 'x'>]><r>&e;</r>");
        EXPECT_FALSE(Parse(InvalidDocument));
    }
}

/// Counts what Xerces' objects made under it hold.
class CountingMemoryManager : public xercesc_3_0::MemoryManager
{
  public:
    CountingMemoryManager() { xercesc_3_0::XMLPlatformUtils::fgMemoryManager = this; }
    ~CountingMemoryManager() override { xercesc_3_0::XMLPlatformUtils::fgMemoryManager = original; }

    xercesc_3_0::MemoryManager* getExceptionMemoryManager() override { return original; }
    void* allocate(XMLSize_t size) override
    {
        ++blocks;
        return original->allocate(size);
    }
    void deallocate(void* block) override
    {
        if (block)
            --blocks;
        original->deallocate(block);
    }

    int blocks = 0;

  private:
    xercesc_3_0::MemoryManager* const original = xercesc_3_0::XMLPlatformUtils::fgMemoryManager;
};

TEST_F(ValidatingXMLParserTest, KeepsNothingOfDocumentsThatItFailedToParse)
{
    CountingMemoryManager memory;
    {
        ValidatingXMLParser counted;
        const std::string text = "<r>" + std::string(1'000'000, 'x');
        const auto fail = [&]
        {
            EXPECT_FALSE(counted.Parse(Bytes(text), Size(text), scheme, false, UniString(), nullptr, nullptr,
                                       nullptr));
            return memory.blocks;
        };
        const int blocksOfOneFailure = fail();
        for (int i = 0; i < 9; ++i)
            fail();
        EXPECT_EQ(fail(), blocksOfOneFailure);
    }
}

TEST_F(ValidatingXMLParserTest, HasNoHandlersWhenACallHasEnded)
{
    ExpectNoHandlers();
    ExpectToParse("<r/>");
    ExpectNoHandlers();
    EXPECT_TRUE(LoadSchema(Schema));
    ExpectNoHandlers();
}

// Validation without a schema.

TEST_F(ValidatingXMLParserTest, ReportsAnInvalidDocument)
{
    scheme = LineInfoParser::Val_Always;
    EXPECT_FALSE(Parse(InvalidDocument));
    ExpectReport(3, u"no character data is allowed by content model");
}

TEST_F(ValidatingXMLParserTest, ParsesAnInvalidDocumentWhenItNeverValidates)
{
    EXPECT_TRUE(Parse(InvalidDocument));
    ExpectUntouchedReport();
}

TEST_F(ValidatingXMLParserTest, ValidatesAutomaticallyWhenThereIsADTD)
{
    scheme = LineInfoParser::Val_Auto;
    EXPECT_FALSE(Parse(InvalidDocument));
    EXPECT_TRUE(Parse("<undeclared/>"));
    scheme = LineInfoParser::Val_Always;
    EXPECT_FALSE(Parse("<undeclared/>"));
}

TEST_F(ValidatingXMLParserTest, DropsWarnings)
{
    // Declaring an attribute twice is a warning.
    scheme = LineInfoParser::Val_Always;
    EXPECT_TRUE(Parse("<!DOCTYPE r [<!ELEMENT r EMPTY><!ATTLIST r a CDATA #IMPLIED a CDATA #IMPLIED>]><r/>"));
    ExpectUntouchedReport();
}

// Entities.

constexpr char TwoEntities[] = "<!DOCTYPE r [<!ENTITY e 'one'>]><r>&e;two</r>";

TEST_F(ValidatingXMLParserTest, PutsEntityReferenceNodesIntoTheTree)
{
    createEntityRefNodes = true;
    const Document document = Parse(TwoEntities);
    ASSERT_TRUE(document) << report.message;
    const DOMNode* reference = document->getDocumentElement()->getFirstChild();
    EXPECT_EQ(reference->getNodeType(), DOMNode::ENTITY_REFERENCE_NODE);
    EXPECT_EQ(RootTextOf(document), UniString(u"onetwo"));
}

TEST_F(ValidatingXMLParserTest, PutsTheContentOfEntitiesIntoTheTree)
{
    createEntityRefNodes = true;
    Parse(TwoEntities);
    createEntityRefNodes = false;
    const Document document = Parse(TwoEntities);
    ASSERT_TRUE(document) << report.message;
    const DOMNode* text = document->getDocumentElement()->getFirstChild();
    EXPECT_EQ(UniString(text->getNodeValue()), UniString(u"onetwo"));
}

TEST_F(ValidatingXMLParserTest, ReadsEntitiesRelativeToTheCurrentFolder)
{
    std::filesystem::create_directory(scratch.Path() / "sub");
    scratch.Write("part.ent", "here");
    scratch.Write("sub/part.ent", "beside the document");
    const NuvTest::CurrentFolderScope current(scratch.Path());
    const char text[] = "<!DOCTYPE r [<!ENTITY e SYSTEM 'part.ent'><!ENTITY f SYSTEM './sub/../part.ent'>]>"
                        "<r>&e;&f;</r>";
    EXPECT_EQ(RootTextOf(ParseFile(Write("sub/a.xml", text))), UniString(u"herehere"));
    EXPECT_EQ(RootTextOf(Parse(text)), UniString(u"herehere"));
}

TEST_F(ValidatingXMLParserTest, ReadsEntitiesOfFilesWhateverTheirName)
{
    const NuvTest::CurrentFolderScope current(scratch.Path());
    for (const char* name : {"a b.ent", "%41.ent", "\u00FC\u20AC.ent", "a%20b.ent"})
    {
        scratch.Write(name, "text");
        const Document document =
            Parse("<!DOCTYPE r [<!ENTITY e SYSTEM '" + std::string(name) + "'>]><r>&e;</r>");
        EXPECT_EQ(RootTextOf(document), UniString(u"text")) << name << ": " << report.message;
    }
}

TEST_F(ValidatingXMLParserTest, ReadsEntitiesByAbsolutePathAndURL)
{
    const IO::Location part = Write("part.ent", "text");
    for (const std::string& systemId : {part.ToPath().ToUTF8(), part.ToURL().ToUTF8()})
    {
        const Document document = Parse("<!DOCTYPE r [<!ENTITY e SYSTEM '" + systemId + "'>]><r>&e;</r>");
        EXPECT_EQ(RootTextOf(document), UniString(u"text")) << systemId << ": " << report.message;
    }
}

TEST_F(ValidatingXMLParserTest, IgnoresPublicIds)
{
    scratch.Write("part.ent", "text");
    const NuvTest::CurrentFolderScope current(scratch.Path());
    const Document document = Parse("<!DOCTYPE r [<!ENTITY e PUBLIC '-//N//P//EN' 'part.ent'>]><r>&e;</r>");
    EXPECT_EQ(RootTextOf(document), UniString(u"text"));
}

TEST_F(ValidatingXMLParserTest, ReadsTheExternalDTD)
{
    const NuvTest::XercesLeakScope leaks;
    scratch.Write("r.dtd", "<!ELEMENT r (#PCDATA)>\n<!ENTITY e 'text'>");
    const NuvTest::CurrentFolderScope current(scratch.Path());
    EXPECT_EQ(RootTextOf(Parse("<!DOCTYPE r SYSTEM 'r.dtd'><r>&e;</r>")), UniString(u"text"));
    scheme = LineInfoParser::Val_Always;
    EXPECT_FALSE(Parse("<!DOCTYPE r SYSTEM 'r.dtd'>\n<r><a/></r>"));
    ExpectReport(2, u"no declaration found for element 'a'");
}

TEST_F(ValidatingXMLParserTest, ReportsAMissingEntity)
{
    const NuvTest::CurrentFolderScope current(scratch.Path());
    EXPECT_FALSE(Parse("<!DOCTYPE r [<!ENTITY e SYSTEM 'missing.ent'>]>\n<r>\n&e;</r>"));
    const IO::Location missing(scratch.PathOf("missing.ent"));
    ExpectReport(3, UniString(u"unable to open external entity '") + missing.ToURL() + u"'");
}

TEST_F(ValidatingXMLParserTest, LeavesOtherURLsToXerces)
{
    // Nothing listens on that port; the file library would have looked for a file.
    EXPECT_FALSE(Parse("<!DOCTYPE r [<!ENTITY e SYSTEM 'http://127.0.0.1:1/e'>]>\n<r>&e;</r>"));
    EXPECT_EQ(report.location.lineNumber, 2u);
    EXPECT_EQ(report.message.View().find(u"unable to open external entity"), report.message.View().npos);
}

TEST_F(ValidatingXMLParserTest, ReportsAnEntityWhoseURLXercesDoesNotUnderstand)
{
    EXPECT_FALSE(Parse("<!DOCTYPE r [<!ENTITY e SYSTEM 'gopher://host/e'>]>\n<r>&e;</r>"));
    ExpectReport(2, u"URL protocol 'gopher' is unsupported");
}

// Namespaces.

TEST_F(ValidatingXMLParserTest, LeavesPrefixesAloneWithoutASchema)
{
    const Document document = Parse("<p:r xmlns:q='urn:q'><q:a/></p:r>");
    ASSERT_TRUE(document) << report.message;
    const auto* root = document->getDocumentElement();
    EXPECT_EQ(UniString(root->getNodeName()), UniString(u"p:r"));
    EXPECT_EQ(root->getFirstChild()->getNamespaceURI(), nullptr);
    EXPECT_EQ(root->getFirstChild()->getLocalName(), nullptr);
}

TEST_F(ValidatingXMLParserTest, ProcessesNamespacesOnceASchemaIsLoaded)
{
    ASSERT_TRUE(LoadSchema(Schema));
    const Document document = Parse(ValidBySchema);
    ASSERT_TRUE(document) << report.message;
    EXPECT_EQ(UniString(document->getDocumentElement()->getNamespaceURI()), UniString(u"urn:n"));
    EXPECT_EQ(UniString(document->getDocumentElement()->getLocalName()), UniString(u"r"));
    EXPECT_FALSE(Parse("\n<p:r/>"));
    ExpectReport(2, u"prefix 'p' can not be resolved to namespace URI");
}

// Schemas.

TEST_F(ValidatingXMLParserTest, ValidatesAgainstALoadedSchema)
{
    EXPECT_TRUE(LoadSchema(Schema));
    ExpectUntouchedReport();
    ExpectToParse(ValidBySchema);
    EXPECT_FALSE(Parse(InvalidBySchema));
    EXPECT_EQ(report.location.lineNumber, 2u);
}

TEST_F(ValidatingXMLParserTest, ValidatesAgainstASchemaWhateverTheScheme)
{
    ASSERT_TRUE(LoadSchema(Schema));
    for (const auto each : {LineInfoParser::Val_Never, LineInfoParser::Val_Always, LineInfoParser::Val_Auto})
    {
        scheme = each;
        ExpectToParse(ValidBySchema);
        EXPECT_FALSE(Parse(InvalidBySchema));
        EXPECT_FALSE(Parse("<r/>")) << "which no schema declares";
    }
}

TEST_F(ValidatingXMLParserTest, KeepsTheSchemaWhenItsFileIsGone)
{
    ASSERT_TRUE(LoadSchema(Schema));
    std::filesystem::remove(scratch.Path() / "schema.xsd");
    for (int i = 0; i < 3; ++i)
    {
        ExpectToParse(ValidBySchema);
        EXPECT_FALSE(Parse(InvalidBySchema));
        EXPECT_FALSE(Parse("<"));
    }
}

TEST_F(ValidatingXMLParserTest, ValidatesAgainstEverySchemaThatWasLoaded)
{
    ASSERT_TRUE(LoadSchema(Schema));
    ASSERT_TRUE(LoadSchema(Write("other.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                              "<xs:element name='other' type='xs:date'/></xs:schema>")));
    ExpectToParse(ValidBySchema);
    ExpectToParse("<other>2024-02-29</other>");
    EXPECT_FALSE(Parse(InvalidBySchema));
    EXPECT_FALSE(Parse("<other>2023-02-29</other>"));
}

TEST_F(ValidatingXMLParserTest, LoadsASchemaAfterAParse)
{
    ExpectToParse("<r/>");
    EXPECT_FALSE(Parse("<r>"));
    report = Report();
    ASSERT_TRUE(LoadSchema(Schema));
    ExpectUntouchedReport();
    ExpectToParse(ValidBySchema);
}

TEST_F(ValidatingXMLParserTest, LoadsWhatASchemaIncludesFromBesideIt)
{
    // The resolver of entities, for which the current folder counts, belongs to Parse alone.
    ExpectToParse("<r/>");
    std::filesystem::create_directory(scratch.Path() / "sub");
    scratch.Write("sub/part.xsd", Schema);
    EXPECT_TRUE(LoadSchema(Write("sub/whole.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'"
                                                  " targetNamespace='urn:n'>"
                                                  "<xs:include schemaLocation='part.xsd'/></xs:schema>")))
        << report.message;
    ExpectToParse(ValidBySchema);
}

TEST_F(ValidatingXMLParserTest, LoadsSchemasWhateverTheirFileName)
{
    for (const char* name : {"a b.xsd", "\u00FC\u20AC.xsd", "%41.xsd"})
    {
        ValidatingXMLParser fresh;
        EXPECT_TRUE(fresh.LoadSchema(Write(name, Schema), &report.location, &report.message))
            << name << ": " << report.message;
    }
}

TEST_F(ValidatingXMLParserTest, ReportsASchemaThatCannotBeOpened)
{
    for (const IO::Location& location :
         {IO::Location(scratch.PathOf("missing.xsd")), IO::Location(scratch.PathOf("")), IO::Location()})
    {
        report = Report();
        EXPECT_FALSE(LoadSchema(location));
        ExpectReport(0, u"Could not open the XML Schema file.");
    }
}

TEST_F(ValidatingXMLParserTest, ReportsASchemaThatMayNotBeRead)
{
    const IO::Location schema = Write("secret.xsd", Schema);
    std::filesystem::permissions(scratch.Path(), std::filesystem::perms(0777));
    std::filesystem::permissions(scratch.Path() / "secret.xsd", std::filesystem::perms::none);
    const NuvTest::WithoutPrivileges unprivileged;
    EXPECT_FALSE(LoadSchema(schema));
    ExpectReport(0, u"Could not open the XML Schema file.");
}

TEST_F(ValidatingXMLParserTest, ReportsLineAndMessageOfASchemaThatIsNotWellFormed)
{
    EXPECT_FALSE(
        LoadSchema("<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n<xs:element>\n</xs:schema>"));
    ExpectReport(3, u"expected end of tag 'xs:element'");
}

TEST_F(ValidatingXMLParserTest, ReportsLineAndMessageOfAFaultInASchema)
{
    EXPECT_FALSE(LoadSchema("<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n"
                            "<xs:element name='r' type='xs:nothing'/></xs:schema>"));
    ExpectReport(2, u"type 'http://www.w3.org/2001/XMLSchema:nothing' not found");
}

TEST_F(ValidatingXMLParserTest, ReportsASchemaThatIsNone)
{
    EXPECT_FALSE(LoadSchema("\n<r/>"));
    ExpectReport(2, u"root element name of XML Schema document must be 'schema'");
}

TEST_F(ValidatingXMLParserTest, ChangesNothingWhenASchemaFailsToLoad)
{
    for (const char* schema : {"<", "<r/>"})
    {
        EXPECT_FALSE(LoadSchema(schema));
        ExpectToParse("<p:r/>");
        ExpectToParse(InvalidDocument);
    }
}

TEST_F(ValidatingXMLParserTest, KeepsItsSchemaWhenAnotherFailsToLoad)
{
    ASSERT_TRUE(LoadSchema(Schema));
    for (const char* schema : {"<", "<r/>"})
    {
        EXPECT_FALSE(LoadSchema(schema));
        ExpectToParse(ValidBySchema);
        EXPECT_FALSE(Parse(InvalidBySchema));
    }
}

// One document.

TEST_F(ValidatingXMLParserTest, IsMadeAnewByParseXMLDocForAFile)
{
    const IO::Location file = Write("a.xml", "<p:r>&lt;</p:r>");
    NodeLocations store;
    const Document document(ParseXMLDoc(file, scheme, false, &store, &report.location, &report.message));
    EXPECT_EQ(RootTextOf(document), UniString(u"<"));
    EXPECT_EQ(UniString(document->getDocumentURI()), file.ToURL());
    EXPECT_NE(store.Find(document->getDocumentElement()), nullptr);
    ExpectUntouchedReport();
    EXPECT_FALSE(
        ParseXMLDoc(Write("b.xml", "\n<r>"), scheme, false, nullptr, &report.location, &report.message));
    ExpectReport(2, u"input ended before all started tags were ended; last tag started is 'r'");
}

TEST_F(ValidatingXMLParserTest, IsMadeAnewByParseXMLDocForMemory)
{
    const std::string_view text = "<!DOCTYPE r [<!ENTITY e 'one'>]>\n<r>&e;</r>";
    NodeLocations store;
    const Document document(ParseXMLDoc(Bytes(text), Size(text), LineInfoParser::Val_Never, true,
                                        UniString(u"system id"), &store, &report.location, &report.message));
    ASSERT_TRUE(document) << report.message;
    EXPECT_EQ(document->getDocumentElement()->getFirstChild()->getNodeType(), DOMNode::ENTITY_REFERENCE_NODE);
    EXPECT_EQ(UniString(document->getDocumentURI()), UniString(u"system id"));
    EXPECT_NE(store.Find(document->getDocumentElement()), nullptr);
    ExpectUntouchedReport();
    EXPECT_FALSE(ParseXMLDoc(Bytes(text), Size(text), LineInfoParser::Val_Always, true, UniString(), nullptr,
                             &report.location, &report.message));
    ExpectReport(2, u"no declaration found for element 'r'");
}

TEST_F(ValidatingXMLParserTest, IsMadeAnewByParseXMLDocForMemoryWithALocation)
{
    NodeLocations store;
    const Document document(ParseXMLDoc(Bytes("<r/>"), 4, scheme, false,
                                        IO::Location(u"file:///folder/a%20b"), &store, &report.location,
                                        &report.message));
    EXPECT_EQ(UniString(document->getDocumentURI()), UniString(u"file:///folder/a b"));
    EXPECT_NE(store.Find(document->getDocumentElement()), nullptr);
    ExpectUntouchedReport();
    EXPECT_FALSE(ParseXMLDoc(Bytes("<r/>"), 3, scheme, false, IO::Location(), nullptr, &report.location,
                             &report.message));
    EXPECT_EQ(report.location.lineNumber, 1u);
}

TEST_F(ValidatingXMLParserTest, DoesNotTakeFailuresForLackOfMemory)
{
    EXPECT_FALSE(parser.RanOutOfMemory());
    EXPECT_FALSE(Parse("<r>"));
    EXPECT_FALSE(parser.RanOutOfMemory());
    EXPECT_FALSE(Parse(TwoColons));
    EXPECT_FALSE(parser.RanOutOfMemory());
    EXPECT_FALSE(LoadSchema("<r/>"));
    EXPECT_FALSE(parser.RanOutOfMemory());
}

TEST(ValidatingXMLParserWithoutXerces, FailsInEveryOperation)
{
    const NuvTest::ScratchFolder scratch;
    const IO::Location schema(scratch.Write("schema.xsd", Schema));
    const NuvTest::XercesDownScope down;
    ValidatingXMLParser parser;
    UniString message;
    EXPECT_FALSE(parser.LoadSchema(schema, nullptr, &message));
    EXPECT_EQ(message, UniString(u"Could not load the XML Schema."));
    const auto never = LineInfoParser::Val_Never;
    EXPECT_FALSE(parser.Parse(schema, never, false, nullptr, nullptr, &message));
    EXPECT_EQ(message, UniString(u"Failed to parse XML document"));
    message = UniString();
    EXPECT_FALSE(ParseXMLDoc(Bytes("<r/>"), 4, never, false, UniString(), nullptr, nullptr, &message));
    EXPECT_EQ(message, UniString(u"Failed to parse XML document"));
}

} // namespace
