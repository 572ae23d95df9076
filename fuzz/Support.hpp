/// @file
/// What the fuzz targets share. Equality of trees is decided here and not by the library's comparison, which
/// is under test itself.
#pragma once

#include "NuvRoot/Channels.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLNetAccessor.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

namespace Fuzz
{

using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;

/// Ends the target with a finding when a property does not hold.
inline void Check(bool holds)
{
    if (!holds)
        std::abort();
}

// Input.

inline std::string_view TextOf(const std::uint8_t* bytes, std::size_t size)
{
    return {reinterpret_cast<const char*>(bytes), size};
}

/// Input of two parts: the first line is a script of operations, the rest a document.
struct Parts
{
    std::string_view script;
    std::string_view document;
};

inline Parts Divide(std::string_view input)
{
    const std::size_t end = std::min(input.find('\n'), input.size());
    return {input.substr(0, end), input.substr(std::min(end + 1, input.size()))};
}

/// Reads a script byte by byte.
class Script
{
  public:
    explicit Script(std::string_view text)
        : rest(text)
    {
    }

    bool IsAtEnd() const { return rest.empty(); }

    /// Zero at the end.
    char Next()
    {
        const char byte = IsAtEnd() ? '\0' : rest.front();
        rest.remove_prefix(IsAtEnd() ? 0 : 1);
        return byte;
    }

    /// One of the choices.
    template <class T, std::size_t Count>
    const T& Choose(const T (&choices)[Count])
    {
        return choices[static_cast<unsigned char>(Next()) % Count];
    }

  private:
    std::string_view rest;
};

// Documents.

using Document = NuvXML::XercesPtr<DOMDocument>;

/// No document of a target reaches the network.
inline const bool IsWithoutNetwork = []
{
    delete std::exchange(xercesc_3_0::XMLPlatformUtils::fgNetAccessor, nullptr);
    return true;
}();

/// Null for text that is not well-formed.
inline Document Parse(std::string_view text, bool createEntityRefNodes = true, NodeLocations* lines = nullptr)
{
    NuvXML::Loaded loaded =
        NuvXML::LoadDocument(text, {.limits = ParserLimits(), .entityReferences = createEntityRefNodes});
    if (lines)
        *lines = std::move(loaded.lines);
    return std::move(loaded.document);
}

inline std::string Print(const DOMDocument& document, const char16_t* encoding)
{
    Nuv::MemoryOChannel channel;
    Check(FormatXMLDoc(&document, &channel, encoding, true));
    return channel.GetBytes();
}

// Trees.

inline std::u16string_view ViewOf(const XMLCh* text)
{
    return text ? std::u16string_view(text) : std::u16string_view();
}

/// What two trees share that are equal.
enum class Equality
{
    Exact,   ///< everything but the content of the document type
    Printed, ///< white space as a parser reads it where it is not escaped: LF for line ends, blanks in
             ///< attributes
    Content  ///< what SAX tells: no comments, no document type, CDATA sections are text
};

inline void AppendName(std::u16string& text, const DOMNode& node, Equality equality)
{
    text += static_cast<char16_t>(node.getNodeType());
    text += ViewOf(node.getNodeName());
    text += u'\x1E';
    Nuv::UniString value(node.getNodeValue());
    if (equality == Equality::Printed && node.getNodeType() == DOMNode::ATTRIBUTE_NODE)
    {
        value.ReplaceAll(u"\r\n", u" ");
        for (const char16_t* const blank : {u"\r", u"\n", u"\t"})
            value.ReplaceAll(blank, u" ");
    }
    text += value.View();
    text += u'\x1F';
}

inline void AppendTree(std::u16string& text, const DOMNode& node, Equality equality)
{
    const DOMNode::NodeType type = node.getNodeType();
    const bool isContentOnly = equality == Equality::Content;
    if (isContentOnly && (type == DOMNode::COMMENT_NODE || type == DOMNode::DOCUMENT_TYPE_NODE))
        return;
    if (type == DOMNode::TEXT_NODE || (isContentOnly && type == DOMNode::CDATA_SECTION_NODE))
    {
        text += ViewOf(node.getNodeValue());
        return;
    }
    AppendName(text, node, equality);
    if (const auto* const attributes = node.getAttributes())
        for (XMLSize_t i = 0; i < attributes->getLength(); ++i)
            AppendName(text, *attributes->item(i), equality);
    for (const DOMNode* child = node.getFirstChild(); child; child = child->getNextSibling())
        AppendTree(text, *child, equality);
    text += u'\x1D';
}

/// A text that two trees share when they are equal: names and values between control characters, which
/// XML 1.0 cannot hold. Text nodes that touch each other are one.
inline Nuv::UniString TreeText(const DOMNode& node, Equality equality)
{
    std::u16string text;
    AppendTree(text, node, equality);
    Nuv::UniString result(text);
    if (equality == Equality::Printed)
    {
        result.ReplaceAll(u"\r\n", u"\n");
        result.ReplaceAll(u"\r", u"\n");
    }
    return result;
}

inline bool HoldsHalfAPair(std::u16string_view text)
{
    const auto isLead = [](char16_t unit) { return (unit & 0xFC00) == 0xD800; };
    const auto isTrail = [](char16_t unit) { return (unit & 0xFC00) == 0xDC00; };
    for (std::size_t i = 0; i < text.size(); ++i)
        if (i + 1 < text.size() && isLead(text[i]) && isTrail(text[i + 1]))
            ++i;
        else if (isLead(text[i]) || isTrail(text[i]))
            return true;
    return false;
}

/// Whether the document is one of XML 1.0, which is what the library writes. Xerces reads XML 1.1 too, and
/// does not see half a surrogate pair at the end of a processing instruction, which no XML may hold.
inline bool IsXML10(const DOMDocument& document)
{
    return !xercesc_3_0::XMLString::equals(document.getXmlVersion(), xercesc_3_0::XMLUni::fgVersion1_1) &&
           !HoldsHalfAPair(TreeText(document, Equality::Exact).View());
}

inline bool IsASCII(const XMLCh* text)
{
    return std::ranges::all_of(ViewOf(text), [](char16_t unit) { return unit < 0x80; });
}

/// Whether every character outside ASCII stands where a character reference can stand for it.
inline bool CanBeASCII(const DOMNode& node)
{
    if (node.getNodeType() == DOMNode::TEXT_NODE)
        return true;
    if (!IsASCII(node.getNodeName()) || !IsASCII(node.getNodeValue()))
        return false;
    if (const auto* const attributes = node.getAttributes())
        for (XMLSize_t i = 0; i < attributes->getLength(); ++i)
            if (!IsASCII(attributes->item(i)->getNodeName()))
                return false;
    for (const DOMNode* child = node.getFirstChild(); child; child = child->getNextSibling())
        if (!CanBeASCII(*child))
            return false;
    return true;
}

} // namespace Fuzz
