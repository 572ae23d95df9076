#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/impl/DOMDocumentImpl.hpp>

namespace NuvTest
{

/// A document that makes no nodes, or only so many text nodes, when it is told so, as the DOM's interface
/// lets it.
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
        return textsToMake-- > 0 ? DOMDocumentImpl::createTextNode(data) : nullptr;
    }

    xercesc_3_0::DOMCDATASection* createCDATASection(const XMLCh* data) override
    {
        return textsToMake-- > 0 ? DOMDocumentImpl::createCDATASection(data) : nullptr;
    }

    xercesc_3_0::DOMProcessingInstruction* createProcessingInstruction(const XMLCh*, const XMLCh*) override
    {
        if (refusesInstructions)
            throw xercesc_3_0::DOMException();
        return nullptr;
    }

    bool makesElements = true;
    bool refusesInstructions = false; ///< by an exception
    int textsToMake = 1000;           ///< CDATA sections count as well
    xercesc_3_0::DOMElement* const root;
};

} // namespace NuvTest
