#include "ValidatingXMLParserSupport.hpp"

#include "tests/support/PrivateAccess.hpp"
#include "tests/support/XercesDownScope.hpp"
#include "tests/support/XercesLeakScope.hpp"

#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/util/PlatformUtils.hpp>

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

using namespace ParserTests;

static_assert(LineInfoParser::Val_Never == 0 && LineInfoParser::Val_Always == 1 &&
              LineInfoParser::Val_Auto == 2);
static_assert(!std::is_copy_constructible_v<ValidatingXMLParser>);

void ExpectNoHandlers(ValidatingXMLParser& parser)
{
    const auto& owned = parser.*Reveal(NuvTest::OwnedParser());
    EXPECT_EQ(owned ? owned->getErrorHandler() : nullptr, nullptr);
    EXPECT_EQ(owned ? owned->getEntityResolver() : nullptr, nullptr);
}

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
    ExpectNoHandlers(parser);
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
        ExpectNoHandlers(parser);
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
    ExpectNoHandlers(parser);
    ExpectToParse("<r/>");
    ExpectNoHandlers(parser);
    EXPECT_TRUE(LoadSchema(Schema));
    ExpectNoHandlers(parser);
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
