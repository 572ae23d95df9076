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
