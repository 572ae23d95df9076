#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/impl/DOMDocumentImpl.hpp>

namespace NuvTest
{

/// A document that makes no nodes when it is told so, as the DOM's interface lets it.
class BarrenDocument : public xercesc_3_0::DOMDocumentImpl
{
  public:
    BarrenDocument()
        : DOMDocumentImpl(xercesc_3_0::DOMImplementation::getImplementation())
        , root(DOMDocumentImpl::createElement(u"r"))
    {
        appendChild(root);
    }

    xercesc_3_0::DOMElement* createElement(const XMLCh* name) override
    {
        return makesElements ? DOMDocumentImpl::createElement(name) : nullptr;
    }

    xercesc_3_0::DOMText* createTextNode(const XMLCh* data) override
    {
        return makesText ? DOMDocumentImpl::createTextNode(data) : nullptr;
    }

    xercesc_3_0::DOMCDATASection* createCDATASection(const XMLCh* data) override
    {
        return makesText ? DOMDocumentImpl::createCDATASection(data) : nullptr;
    }

    xercesc_3_0::DOMProcessingInstruction* createProcessingInstruction(const XMLCh*, const XMLCh*) override
    {
        return nullptr;
    }

    bool makesElements = true;
    bool makesText = true;
    xercesc_3_0::DOMElement* const root;
};

} // namespace NuvTest
