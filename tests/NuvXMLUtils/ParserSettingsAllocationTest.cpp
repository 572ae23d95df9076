#include "AllocationFailureSupport.hpp"
#include "NuvXMLUtils/LimitedSAX2Reader.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>

#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using namespace AllocationFailureTests;

constexpr std::string_view Invalid = "<!DOCTYPE a [<!ELEMENT a EMPTY>]><a><b/><c/></a>";

Document Parse(ValidatingXMLParser& parser, std::string_view text)
{
    return Document(parser.Parse(Data(text), Size(text), ValidatingXMLParser::LineInfoParser::Val_Auto, false,
                                 UniString(u"memory"), nullptr, nullptr, nullptr));
}

/// A handler that keeps messages, as callers do.
ValidatingXMLParser::ErrorHandler KeepIn(std::vector<UniString>& messages)
{
    return [&messages](const NodeLocationInfo&, const UniString& message) { messages.push_back(message); };
}

void ThrowLackOfMemory(const NodeLocationInfo&, const UniString&) { throw std::bad_alloc(); }

TEST(AllocationFailure, InAnErrorHandlerEndsTheParseAndLeavesTheParserUsable)
{
    for (long nth = 1;; ++nth)
    {
        ValidatingXMLParser parser;
        std::vector<UniString> messages;
        parser.SetErrorHandler(KeepIn(messages));
        FailAt(nth, Mode::Once);
        const bool isLoaded = Parse(parser, Invalid) != nullptr;
        const bool hasFailed = Disarm();
        ASSERT_TRUE(!isLoaded || messages.size() == 3) << "with allocation " << nth << " failing";
        messages.clear();
        ASSERT_TRUE(Parse(parser, Invalid)) << "after allocation " << nth << " has failed";
        ASSERT_EQ(messages.size(), 3u);
        if (!hasFailed)
            return;
    }
}

TEST(AllocationFailure, InAnErrorHandlerLosesTheSchemaUntilItIsLoadedAgain)
{
    const NuvTest::ScratchFolder folder;
    folder.Write("a.xsd",
                 "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='a'/></xs:schema>");
    const IO::Location schema(folder.PathOf("a.xsd"));
    ValidatingXMLParser parser;
    ASSERT_TRUE(parser.LoadSchema(schema, nullptr, nullptr));
    parser.SetErrorHandler(ThrowLackOfMemory);
    EXPECT_TRUE(Parse(parser, "<a/>"));
    EXPECT_FALSE(Parse(parser, "<b/>"));
    EXPECT_FALSE(Parse(parser, "<a/>"));
    ASSERT_TRUE(parser.LoadSchema(schema, nullptr, nullptr));
    EXPECT_TRUE(Parse(parser, "<a/>"));
}

constexpr std::string_view SchemaOfA =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='a' type='xs:int'/></xs:schema>";

TEST(AllocationFailure, IsToldOfTheLastOperationOnly)
{
    const NuvTest::ScratchFolder folder;
    const IO::Location schema(folder.Write("a.xsd", SchemaOfA));
    ValidatingXMLParser parser;
    ASSERT_TRUE(parser.LoadSchema(schema, nullptr, nullptr));
    parser.SetErrorHandler(ThrowLackOfMemory);
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_FALSE(Parse(parser, "<b/>"));
        EXPECT_TRUE(parser.RanOutOfMemory());
        EXPECT_FALSE(Parse(parser, "<a>1</a>")) << "for want of the schema";
        EXPECT_FALSE(parser.RanOutOfMemory());
        const IO::Location file(folder.Write("a.xml", "<a>1</a>"));
        EXPECT_FALSE(Document(parser.Parse(file, ValidatingXMLParser::LineInfoParser::Val_Auto, false,
                                           nullptr, nullptr, nullptr)));
        EXPECT_FALSE(parser.RanOutOfMemory());
        EXPECT_FALSE(parser.LoadSchema(IO::Location(folder.PathOf("missing")), nullptr, nullptr));
        EXPECT_FALSE(parser.RanOutOfMemory());
        EXPECT_FALSE(Parse(parser, "<a>1</a>"));
        EXPECT_FALSE(parser.RanOutOfMemory());
        ASSERT_TRUE(parser.LoadSchema(schema, nullptr, nullptr));
        EXPECT_TRUE(Parse(parser, "<a>1</a>"));
    }
}

/// Expects the parser to validate against SchemaOfA, or to fail until that is loaded again.
void ExpectSchemaInForceOrLost(ValidatingXMLParser& parser, const IO::Location& schema)
{
    EXPECT_FALSE(Parse(parser, "<a>one</a>"));
    EXPECT_TRUE(Parse(parser, "<a>1</a>") || parser.LoadSchema(schema, nullptr, nullptr));
    EXPECT_TRUE(Parse(parser, "<a>1</a>"));
    EXPECT_FALSE(Parse(parser, "<a>one</a>"));
}

TEST(AllocationFailure, OfReplacingASchemaKeepsOneOrLosesIt)
{
    const NuvTest::ScratchFolder folder;
    folder.Write("b.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:b'/>");
    const IO::Location other(folder.PathOf("b.xsd"));
    const IO::Location schema(folder.Write("a.xsd", SchemaOfA));
    const IO::Location copy(folder.Write("copy.xsd", SchemaOfA));
    bool hasFailed = true;
    for (long nth = 1; hasFailed; ++nth)
    {
        SCOPED_TRACE(nth);
        ValidatingXMLParser parser;
        ASSERT_TRUE(parser.LoadSchema(schema, nullptr, nullptr) &&
                    parser.LoadSchema(other, nullptr, nullptr));
        FailAt(nth, Mode::Once);
        const bool isLoaded = parser.LoadSchema(copy, nullptr, nullptr);
        hasFailed = Disarm();
        ASSERT_EQ(isLoaded, !parser.RanOutOfMemory());
        ExpectSchemaInForceOrLost(parser, schema);
    }
}

TEST(AllocationFailure, OfAParserThatIsMadeForEachDocumentIsTold)
{
    const NuvTest::ScratchFolder folder;
    const IO::Location schema(folder.Write("a.xsd", SchemaOfA));
    bool hasFailed = true;
    for (long nth = 1; hasFailed; ++nth)
    {
        SCOPED_TRACE(nth);
        ValidatingXMLParser parser;
        parser.SetLimits(ParserLimits::ForUntrustedInput());
        ASSERT_TRUE(parser.LoadSchema(schema, nullptr, nullptr));
        ASSERT_TRUE(Parse(parser, "<a>1</a>"));
        FailAt(nth, Mode::Once);
        const bool isLoaded = Parse(parser, "<a>2</a>") != nullptr;
        hasFailed = Disarm();
        ASSERT_TRUE(isLoaded || parser.RanOutOfMemory());
        ExpectSchemaInForceOrLost(parser, schema);
    }
}

TEST(AllocationFailure, LeavesTheParsedNodesInForce)
{
    for (long nth = 1;; ++nth)
    {
        ValidatingXMLParser parser;
        parser.SetParsedNodes({.cdataSections = false, .comments = false});
        FailAt(nth, Mode::Once);
        Parse(parser, DocumentText);
        const bool hasFailed = Disarm();
        const Document document = Parse(parser, "<a>x<!-- --><![CDATA[y]]></a>");
        ASSERT_TRUE(document) << "after allocation " << nth << " has failed";
        ASSERT_EQ(UniString(document->getDocumentElement()->getFirstChild()->getNodeValue()), u"xy");
        ASSERT_FALSE(document->getDocumentElement()->getFirstChild()->getNextSibling());
        if (!hasFailed)
            return;
    }
}

TEST(AllocationFailure, OfAStreamReaderIsToldAndLeavesTheNextOneUsable)
{
    const auto read = [](std::string_view text)
    {
        ParserLimits limits = ParserLimits::ForUntrustedInput();
        limits.maxNesting = 2;
        NuvXML::CreateSAX2Reader(limits)->parse(
            xercesc_3_0::MemBufInputSource(Data(text), text.size(), u"memory"));
    };
    long nth = 1;
    for (bool hasFailed = true; hasFailed; ++nth)
    {
        bool isToldOrRead = false;
        FailAt(nth, Mode::Once);
        try
        {
            read(DocumentText);
            isToldOrRead = true;
        }
        catch (const std::bad_alloc&)
        {
            isToldOrRead = true;
        }
        catch (const xercesc_3_0::OutOfMemoryException&)
        {
            isToldOrRead = true;
        }
        hasFailed = Disarm();
        ASSERT_TRUE(isToldOrRead);
        ASSERT_NO_THROW(read(DocumentText)) << "after allocation " << nth << " has failed";
        ASSERT_THROW(read("<a><b><c/></b></a>"), xercesc_3_0::SAXParseException);
    }
    EXPECT_GT(nth, 100);
}

} // namespace
