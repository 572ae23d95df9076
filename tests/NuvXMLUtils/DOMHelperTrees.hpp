/// @file
/// Trees to try the DOM helper functions on, and how tests see what became of them.
#pragma once

#include "NuvXMLUtils/DOMHelpers.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"

#include <gtest/gtest.h>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMNodeList.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace NuvTest
{

/// A document parsed with lines; `root` is its document element.
class Tree
{
  public:
    explicit Tree(std::string_view xml = "<r/>")
    {
        NuvXML::Loaded loaded = NuvXML::LoadDocument(xml, {.entityReferences = true, .name = u"tree.xml"});
        if (!loaded)
            throw std::invalid_argument("not well-formed: " + std::string(xml));
        lines = std::move(loaded.lines);
        document = std::move(loaded.document);
        document->setUserData(u"NodeLocations", &lines, nullptr);
        root = document->getDocumentElement();
    }

    /// The first element of this name.
    xercesc_3_0::DOMElement* Find(const char16_t* name) const
    {
        return static_cast<xercesc_3_0::DOMElement*>(document->getElementsByTagName(name)->item(0));
    }

  private:
    NodeLocations lines;

  public:
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document;
    xercesc_3_0::DOMElement* root = nullptr;
};

/// Text with its control characters made visible.
inline std::string Visible(const XMLCh* text)
{
    std::string visible;
    for (const char byte : Nuv::UniString(text).ToUTF8())
        switch (byte)
        {
        case '\t':
            visible += "\\t";
            break;
        case '\r':
            visible += "\\r";
            break;
        case '\n':
            visible += "\\n";
            break;
        default:
            visible += byte;
        }
    return visible;
}

inline std::string Shown(const xercesc_3_0::DOMNode* parent);

/// A node as {text}, [CDATA section], !comment!, ?target data? or name(children).
inline std::string ShownNode(const xercesc_3_0::DOMNode* node)
{
    const std::string name = Visible(node->getNodeName());
    const std::string value = Visible(node->getNodeValue());
    switch (node->getNodeType())
    {
    case xercesc_3_0::DOMNode::TEXT_NODE:
        return "{" + value + "}";
    case xercesc_3_0::DOMNode::CDATA_SECTION_NODE:
        return "[" + value + "]";
    case xercesc_3_0::DOMNode::COMMENT_NODE:
        return "!" + value + "!";
    case xercesc_3_0::DOMNode::PROCESSING_INSTRUCTION_NODE:
        return "?" + name + " " + value + "?";
    default:
        return name + "(" + Shown(node) + ")";
    }
}

/// The children of a node, one after the other.
inline std::string Shown(const xercesc_3_0::DOMNode* parent)
{
    std::string shown;
    for (const auto* child = parent->getFirstChild(); child; child = child->getNextSibling())
        shown += ShownNode(child);
    return shown;
}

/// The ConvException that `action` throws.
template <class Action>
NuvXMLUtils::ConvException ConvExceptionOf(Action action)
{
    try
    {
        action();
    }
    catch (const NuvXMLUtils::ConvException& exception)
    {
        return exception;
    }
    ADD_FAILURE() << "No ConvException.";
    return NuvXMLUtils::ConvException();
}

/// Its message.
template <class Action>
std::string ConvMessageOf(Action action)
{
    return ConvExceptionOf(action).message.ToUTF8();
}

/// Code and message of the DOMException that `action` throws, e.g. "0: Memory error".
template <class Action>
std::string DOMFailureOf(Action action)
{
    try
    {
        action();
    }
    catch (const xercesc_3_0::DOMException& exception)
    {
        return std::to_string(exception.code) + ": " + Visible(exception.getMessage());
    }
    ADD_FAILURE() << "No DOMException.";
    return std::string();
}

/// Zero-terminated text in units of the callers' type.
inline std::vector<unsigned short> Units(std::u16string_view text)
{
    std::vector<unsigned short> units(text.begin(), text.end());
    units.push_back(0);
    return units;
}

/// An array that a helper function gave away, as text.
inline std::string Taken(char* text) { return std::unique_ptr<char[]>(text).get(); }

inline Nuv::UniString Taken(unsigned short* text)
{
    const std::unique_ptr<unsigned short[]> owner(text);
    std::u16string units;
    for (; *text; ++text)
        units += static_cast<char16_t>(*text);
    return Nuv::UniString(units);
}

} // namespace NuvTest
