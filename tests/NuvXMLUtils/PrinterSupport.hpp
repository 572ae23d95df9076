/// @file
/// Documents to print, and what is expected of the printed bytes.
#pragma once

#include "NuvRoot/Channels.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace NuvTest
{

using Document = NuvXML::XercesPtr<xercesc_3_0::DOMDocument>;

/// A document with the root element `r`, as a parser without namespaces makes it.
inline Document NewDocument()
{
    Document document(xercesc_3_0::DOMImplementation::getImplementation()->createDocument());
    document->appendChild(document->createElement(u"r"));
    return document;
}

/// @throws std::runtime_error when the text is not well-formed
inline Document Parse(std::string_view bytes)
{
    class Strict : public xercesc_3_0::ErrorHandler
    {
        void warning(const xercesc_3_0::SAXParseException&) override {}
        void error(const xercesc_3_0::SAXParseException& exception) override { fatalError(exception); }
        void fatalError(const xercesc_3_0::SAXParseException& exception) override
        {
            throw std::runtime_error(Nuv::UniString(exception.getMessage()).ToUTF8());
        }
        void resetErrors() override {}
    };
    Strict strict;
    xercesc_3_0::XercesDOMParser parser;
    parser.setErrorHandler(&strict);
    const xercesc_3_0::MemBufInputSource source(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(),
                                                "source");
    parser.parse(source);
    return Document(parser.adoptDocument());
}

/// A document of more than two megabytes, with a document type, that many systems have.
/// @throws std::runtime_error where the shared MIME database is not installed
inline std::string ReadTypeDatabase()
{
    std::ifstream file("/usr/share/mime/packages/freedesktop.org.xml", std::ios::binary);
    if (!file)
        throw std::runtime_error("The tests need the shared MIME database (package shared-mime-info).");
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// The bytes that FormatXMLDoc writes in this encoding.
inline std::string Print(const xercesc_3_0::DOMNode& node, const char16_t* encoding = u"UTF-8")
{
    Nuv::MemoryOChannel channel;
    EXPECT_TRUE(FormatXMLDoc(&node, &channel, encoding, true));
    return channel.GetBytes();
}

constexpr std::string_view DeclarationUTF8 = "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

/// What follows the byte-order mark and the declaration in UTF-8.
inline std::string PrintBody(const xercesc_3_0::DOMNode& node)
{
    const std::string bytes = Print(node);
    EXPECT_EQ(bytes.substr(0, DeclarationUTF8.size()), DeclarationUTF8);
    return bytes.substr(DeclarationUTF8.size());
}

/// The units as bytes of UTF-16, the lower byte first.
inline std::string LittleEndian(std::u16string_view units)
{
    std::string bytes;
    for (const char16_t unit : units)
    {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

inline std::string BigEndian(std::u16string_view units)
{
    std::string bytes = LittleEndian(units);
    for (size_t i = 0; i < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

/// Makes documents of every node type, with names and texts of many scripts. The same seed gives the same
/// documents.
class DocumentGenerator
{
  public:
    explicit DocumentGenerator(unsigned seed)
        : random(seed)
    {
    }

    /// A document that an XML parser could have made: what it prints parses to an equal tree in any encoding.
    Document Make()
    {
        Document document = NewDocument();
        if (Below(2) == 0)
            document->insertBefore(document->createComment(SafeText(20).c_str()),
                                   document->getDocumentElement());
        Fill(*document, *document->getDocumentElement(), 4);
        if (Below(2) == 0)
            document->appendChild(
                document->createProcessingInstruction(Name().c_str(), SafeText(20).c_str()));
        return document;
    }

  private:
    size_t Below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random); }

    template <size_t Count>
    std::u16string OneOf(const std::u16string_view (&choices)[Count])
    {
        return std::u16string(choices[Below(Count)]);
    }

    std::u16string Name() { return OneOf({u"a", u"wall", u"x:name", u"a-b.c_1", u"elementWithALongName"}); }

    /// ASCII without characters of markup, not empty, for comments, instructions and CDATA sections, which
    /// take no references.
    std::u16string SafeText(size_t maxPieces)
    {
        std::u16string text = u"s";
        for (size_t count = Below(maxPieces); count != 0; --count)
            text += OneOf({u"a", u" b", u"0123456789", u".", u"(x)"});
        return text;
    }

    std::u16string Text(size_t maxPieces)
    {
        std::u16string text = u"t";
        for (size_t count = Below(maxPieces); count != 0; --count)
            text += OneOf({u"a",
                           u"word and word",
                           u"&",
                           u"<",
                           u">",
                           u"]]>",
                           u"]",
                           u"\"",
                           u"'",
                           u"\u00E4\u00DF",
                           u"\u20AC",
                           u"\u0416",
                           u"\u65E5\u672C",
                           u"\U0001F600",
                           u"\u200B",
                           u"\uFF1C",
                           u"\u0085",
                           u"\u00A0",
                           u"\uFFFD",
                           u"\U0010FFFD",
                           u"\u0160\u017E",
                           u"&amp;"});
        return text;
    }

    std::u16string WithLineFeeds(std::u16string text)
    {
        return text + OneOf({u"", u"\n", u"\n\t\n", u"  \n"});
    }

    void Fill(xercesc_3_0::DOMDocument& document, xercesc_3_0::DOMElement& element, size_t depth)
    {
        for (size_t count = Below(4); count != 0; --count)
            element.setAttribute(Name().c_str(), Text(12).c_str());
        bool lastWasText = false;
        for (size_t count = Below(7); count != 0; --count)
            AppendChild(document, element, depth, lastWasText);
    }

    void AppendChild(xercesc_3_0::DOMDocument& document, xercesc_3_0::DOMElement& parent, size_t depth,
                     bool& lastWasText)
    {
        const size_t kind = Below(7);
        if (kind < 3 && !lastWasText)
            parent.appendChild(document.createTextNode(WithLineFeeds(Text(kind == 0 ? 400 : 10)).c_str()));
        else if (kind == 3)
            parent.appendChild(document.createComment(SafeText(10).c_str()));
        else if (kind == 4)
            parent.appendChild(document.createCDATASection((SafeText(10) + u"<&>").c_str()));
        else if (kind == 5)
            parent.appendChild(document.createProcessingInstruction(Name().c_str(), SafeText(10).c_str()));
        else if (depth != 0)
        {
            xercesc_3_0::DOMElement& child = *document.createElement(Name().c_str());
            parent.appendChild(&child);
            Fill(document, child, depth - 1);
        }
        lastWasText =
            parent.getLastChild() && parent.getLastChild()->getNodeType() == xercesc_3_0::DOMNode::TEXT_NODE;
    }

    std::mt19937 random;
};

} // namespace NuvTest
