#include "NuvXMLUtils/SkipWhitespaceTextsCompareFilter.hpp"

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/TextView.hpp"

#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMText.hpp>

#include <atomic>
#include <typeinfo>

using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMText;

namespace NuvXML
{
namespace
{

bool IsBlank(std::u16string_view text)
{
    // What indents a document is looked at here; the rest of Unicode's white space is left to Trimmed.
    const size_t start = text.find_first_not_of(u" \t\r\n");
    return start == std::u16string_view::npos || Nuv::Trimmed(text.substr(start)).empty();
}

/// Whether a node of text type is a text node of Xerces. A cast takes long, and text nodes are nearly always
/// of the same class, so the class that was seen last is looked at first.
bool IsDOMText(const DOMNode& node)
{
    static std::atomic<const std::type_info*> lastSeen;
    const std::type_info* const type = &typeid(node);
    if (type == lastSeen.load(std::memory_order_relaxed))
        return true;
    if (!dynamic_cast<const DOMText*>(&node))
        return false;
    lastSeen.store(type, std::memory_order_relaxed);
    return true;
}

} // namespace

xercesc_3_0::DOMNodeFilter::FilterAction
SkipWhitespaceTextsCompareFilter::acceptNode(const DOMNode* node) const
{
    switch (node->getNodeType())
    {
    case DOMNode::ELEMENT_NODE:
        return FILTER_ACCEPT;
    case DOMNode::TEXT_NODE:
        return IsBlank(ViewOf(node->getNodeValue())) && IsDOMText(*node) ? FILTER_SKIP : FILTER_ACCEPT;
    default:
        return FILTER_REJECT;
    }
}

} // namespace NuvXML
