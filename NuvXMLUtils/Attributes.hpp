/// @file
/// Faster ways to the attributes of Xerces' elements. Private to the library.
#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

namespace NuvXML
{

/// Has the processor load the values of all attributes at the same time. Whoever goes through them one by one
/// waits for memory several times for each of them: they are sorted by name, and lie there in the order in
/// which the document has them.
inline void FetchAttributes(const xercesc_3_0::DOMNamedNodeMap& attributes)
{
    const XMLSize_t count = attributes.getLength();
    for (XMLSize_t i = 0; i < count; ++i)
        if (const xercesc_3_0::DOMNode* const child = attributes.item(i)->getFirstChild())
            __builtin_prefetch(child->getNodeValue());
}

/// The attribute's getValue(), which casts dynamically also when there is but one text to give.
inline const XMLCh* ValueOf(const xercesc_3_0::DOMAttr& attribute)
{
    const xercesc_3_0::DOMNode* const child = attribute.getFirstChild();
    const bool isOneText =
        child && child->getNodeType() == xercesc_3_0::DOMNode::TEXT_NODE && !child->getNextSibling();
    return isOneText ? child->getNodeValue() : attribute.getValue();
}

} // namespace NuvXML
