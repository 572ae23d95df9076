#include "NuvXMLUtils/SkipWhitespaceTextsCompareFilter.hpp"

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/TextView.hpp"

#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/dom/impl/DOMTextImpl.hpp>

#include <typeinfo>

using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMText;
using xercesc_3_0::DOMTextImpl;

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

/// A cast takes long, so the class of nearly all text nodes is looked at first.
bool IsDOMText(const DOMNode& node)
{
    return typeid(node) == typeid(DOMTextImpl) || dynamic_cast<const DOMText*>(&node);
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
