#include "NuvXMLUtils/SkipWhitespaceTextsCompareFilter.hpp"

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/TextView.hpp"

#include <xercesc/dom/DOMNode.hpp>

using xercesc_3_0::DOMNode;

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

} // namespace

xercesc_3_0::DOMNodeFilter::FilterAction
SkipWhitespaceTextsCompareFilter::acceptNode(const DOMNode* node) const
{
    switch (node->getNodeType())
    {
    case DOMNode::ELEMENT_NODE:
        return FILTER_ACCEPT;
    case DOMNode::TEXT_NODE:
        return IsBlank(ViewOf(node->getNodeValue())) ? FILTER_SKIP : FILTER_ACCEPT;
    default:
        return FILTER_REJECT;
    }
}

} // namespace NuvXML
