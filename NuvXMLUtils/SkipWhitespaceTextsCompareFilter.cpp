#include "NuvXMLUtils/SkipWhitespaceTextsCompareFilter.hpp"

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/TextView.hpp"

#include <xercesc/dom/DOMNode.hpp>

using xercesc_3_0::DOMNode;

namespace NuvXML
{

xercesc_3_0::DOMNodeFilter::FilterAction
SkipWhitespaceTextsCompareFilter::acceptNode(const DOMNode* node) const
{
    switch (node->getNodeType())
    {
    case DOMNode::ELEMENT_NODE:
        return FILTER_ACCEPT;
    case DOMNode::TEXT_NODE:
        return Nuv::Trimmed(ViewOf(node->getNodeValue())).empty() ? FILTER_SKIP : FILTER_ACCEPT;
    default:
        return FILTER_REJECT;
    }
}

} // namespace NuvXML
