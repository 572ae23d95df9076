/// @file
/// What the tests of the parser share: a parser with its settings, and what it reported.
#pragma once

#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "tests/support/ScratchFolder.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>

#include <string_view>

namespace ParserTests
{

using LineInfoParser = ValidatingXMLParser::LineInfoParser;
using Nuv::UniString;
using xercesc_3_0::DOMNode;

constexpr unsigned int UntouchedLine = 4711;
constexpr char16_t UntouchedMessage[] = u"untouched";

/// What an operation gives back through its arguments.
struct Report
{
    NodeLocationInfo location{UntouchedLine};
    UniString message{UntouchedMessage};
};

inline const unsigned char* Bytes(std::string_view text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

inline unsigned int Size(std::string_view text) { return static_cast<unsigned int>(text.size()); }

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

inline UniString RootTextOf(const NuvXML::XercesPtr<xercesc_3_0::DOMDocument>& document)
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

} // namespace ParserTests
