#include "NuvXMLUtils/XMLCompare.hpp"

#include "NuvRoot/SharedObject.hpp"
#include "NuvXMLUtils/OutOfMemory.hpp"

#include <xercesc/dom/DOMTreeWalker.hpp>

#include <memory>

using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMNodeFilter;
using xercesc_3_0::DOMTreeWalker;

namespace NuvXML
{
namespace
{

DOMTreeWalker* NewWalker(const DOMNode* root, DOMNodeFilter* filter)
{
    return WithOwnOutOfMemory(
        [&]
        {
            // Walkers take and give nodes that may be changed; the comparison changes none.
            return root->getOwnerDocument()->createTreeWalker(const_cast<DOMNode*>(root),
                                                              DOMNodeFilter::SHOW_ALL, filter, false);
        });
}

const DOMElement* AsElement(const DOMNode* node)
{
    return node->getNodeType() == DOMNode::ELEMENT_NODE ? static_cast<const DOMElement*>(node) : nullptr;
}

const DOMElement* DocumentElementOf(const DOMDocument* document, XMLCompareException::Side side)
{
    const DOMElement* const element = document->getDocumentElement();
    if (!element)
        throw NoElementsInDocumentException(side);
    return element;
}

} // namespace

void DoXMLCompare(const DOMDocument* left, const DOMDocument* right, XMLNodeComparator* comparator,
                  DOMNodeFilter* filter, const IXMLCompareOptions& options)
{
    const DOMNode* const leftElement = DocumentElementOf(left, XMLCompareException::Left);
    const DOMNode* const rightElement = DocumentElementOf(right, XMLCompareException::Right);
    DoXMLCompare(leftElement, rightElement, comparator, filter, options);
}

void DoXMLCompare(const DOMNode* left, const DOMNode* right, XMLNodeComparator* comparator,
                  DOMNodeFilter* filter, const IXMLCompareOptions& options)
{
    DOMTreeWalker* const leftWalker = NewWalker(left, filter);
    DOMTreeWalker* const rightWalker = NewWalker(right, filter);
    const Nuv::Ref<IXMLCompareOptions> ownOptions(options.Clone());
    // Made for what it does to the options: the caller's comparator compares the roots.
    const std::unique_ptr<XMLNodeComparator> unused(
        ownOptions->PrepareNodeComparator(AsElement(left), AsElement(right)));
    comparator->CompareNodes(leftWalker, rightWalker, *ownOptions);
}

} // namespace NuvXML
