#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/dom/DOMNode.hpp>

namespace CompareTests
{

/// A node of another implementation of the DOM that calls itself text and stands nowhere.
class ForeignText : public xercesc_3_0::DOMNode
{
  public:
    explicit ForeignText(const XMLCh* text)
        : value(text)
    {
    }

    const XMLCh* getNodeName() const override { return u"#text"; }
    const XMLCh* getNodeValue() const override { return value; }
    NodeType getNodeType() const override { return TEXT_NODE; }
    DOMNode* getParentNode() const override { return nullptr; }
    xercesc_3_0::DOMNodeList* getChildNodes() const override { return nullptr; }
    DOMNode* getFirstChild() const override { return nullptr; }
    DOMNode* getLastChild() const override { return nullptr; }
    DOMNode* getPreviousSibling() const override { return nullptr; }
    DOMNode* getNextSibling() const override { return nullptr; }
    xercesc_3_0::DOMNamedNodeMap* getAttributes() const override { return nullptr; }
    xercesc_3_0::DOMDocument* getOwnerDocument() const override { return nullptr; }
    DOMNode* cloneNode(bool) const override { return nullptr; }
    DOMNode* insertBefore(DOMNode*, DOMNode*) override { return nullptr; }
    DOMNode* replaceChild(DOMNode*, DOMNode*) override { return nullptr; }
    DOMNode* removeChild(DOMNode*) override { return nullptr; }
    DOMNode* appendChild(DOMNode*) override { return nullptr; }
    bool hasChildNodes() const override { return false; }
    void setNodeValue(const XMLCh*) override {}
    void normalize() override {}
    bool isSupported(const XMLCh*, const XMLCh*) const override { return false; }
    const XMLCh* getNamespaceURI() const override { return nullptr; }
    const XMLCh* getPrefix() const override { return nullptr; }
    const XMLCh* getLocalName() const override { return nullptr; }
    void setPrefix(const XMLCh*) override {}
    bool hasAttributes() const override { return false; }
    bool isSameNode(const DOMNode* other) const override { return other == this; }
    bool isEqualNode(const DOMNode* other) const override { return other == this; }
    void* setUserData(const XMLCh*, void*, xercesc_3_0::DOMUserDataHandler*) override { return nullptr; }
    void* getUserData(const XMLCh*) const override { return nullptr; }
    const XMLCh* getBaseURI() const override { return nullptr; }
    short compareDocumentPosition(const DOMNode*) const override { return 0; }
    const XMLCh* getTextContent() const override { return value; }
    void setTextContent(const XMLCh*) override {}
    const XMLCh* lookupPrefix(const XMLCh*) const override { return nullptr; }
    bool isDefaultNamespace(const XMLCh*) const override { return false; }
    const XMLCh* lookupNamespaceURI(const XMLCh*) const override { return nullptr; }
    void* getFeature(const XMLCh*, const XMLCh*) const override { return nullptr; }
    void release() override {}

  private:
    const XMLCh* value;
};

} // namespace CompareTests
