#include "NuvXMLUtils/XMLCompareException.hpp"

#include <xercesc/dom/DOMDocument.hpp>

#include <algorithm>
#include <vector>

using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMNode;

namespace NuvXML
{
namespace
{

constexpr size_t URLSchemeLength = 7; // "file://"

IO::RelativeLocation PathOf(const DOMNode* node)
{
    IO::RelativeLocation path;
    if (!node)
        return path;
    const DOMNode* const document = node->getOwnerDocument();
    std::vector<const DOMNode*> upwards{node};
    for (const DOMNode* ancestor = node->getParentNode(); ancestor && ancestor != document;
         ancestor = ancestor->getParentNode())
        upwards.push_back(ancestor);
    std::for_each(upwards.rbegin(), upwards.rend(),
                  [&path](const DOMNode* step) { path.AppendToLocal(IO::Name(step->getNodeName())); });
    return path;
}

const char* SideWord(XMLCompareException::Side side)
{
    return side == XMLCompareException::Left ? "left" : "right";
}

// The arguments of a report are 8-bit text in the local code page, or numbers.
Nuv::String Argument(const Nuv::UniString& text) { return text.ToString(); }
const char* Argument(const char* word) { return word; }
int Argument(int number) { return number; }

/// Puts the two node paths and then `details` into `format`.
template <class... Details>
Nuv::UniString Report(const XMLCompareException& difference, const char* format, const Details&... details)
{
    Nuv::UniString text;
    text.Printf(format, Argument(difference.GetNodePathUniString(XMLCompareException::Left)),
                Argument(difference.GetNodePathUniString(XMLCompareException::Right)), Argument(details)...);
    return text;
}

} // namespace

XMLCompareException::XMLCompareException(const DOMNode* leftNode, const DOMNode* rightNode)
    : path{PathOf(leftNode), PathOf(rightNode)}
{
}

Nuv::UniString XMLCompareException::GetText() const
{
    return Report(*this, "Diff at nodes:\n\t- %s\n\t- %s\n\tUndefined problem.");
}

IO::RelativeLocation XMLCompareException::GetNodePath(Side side) const { return path[side]; }

Nuv::UniString XMLCompareException::GetNodePathUniString(Side side) const
{
    Nuv::UniString text = path[side].ToURL();
    text.Delete(0, URLSchemeLength);
    return text;
}

AttributeMissingException::AttributeMissingException(const DOMNode* leftNode, const DOMNode* rightNode,
                                                     const DOMAttr* attribute, Side missingOn)
    : XMLCompareException(leftNode, rightNode)
    , attributeName(attribute->getNodeName())
    , whereItIsMissing(missingOn)
{
}

Nuv::UniString AttributeMissingException::GetText() const
{
    return Report(*this, "Diff at nodes:\n\t- %s\n\t- %s\n\tMissing attribute \"%s\" on the %s.",
                  attributeName, SideWord(whereItIsMissing));
}

Nuv::UniString AttributeMissingException::GetAttributeName() const { return attributeName; }

XMLCompareException::Side AttributeMissingException::GetWhereItIsMissing() const { return whereItIsMissing; }

AttributesDontMatchException::AttributesDontMatchException(const DOMNode* leftNode, const DOMNode* rightNode,
                                                           const DOMAttr* leftAttribute,
                                                           const DOMAttr* rightAttribute)
    : XMLCompareException(leftNode, rightNode)
    , attributeName(leftAttribute->getNodeName())
    , value{leftAttribute->getValue(), rightAttribute->getValue()}
{
}

Nuv::UniString AttributesDontMatchException::GetText() const
{
    return Report(*this,
                  "Diff at nodes:\n\t- %s\n\t- %s\n"
                  "\tValues of attribute \"%s\" don't match: \"%s\" and \"%s\".",
                  attributeName, value.left, value.right);
}

Nuv::UniString AttributesDontMatchException::GetAttributeName() const { return attributeName; }

Nuv::UniString AttributesDontMatchException::GetAttributeValue(Side side) const { return value[side]; }

NodeNamesDontMatchException::NodeNamesDontMatchException(const DOMNode* leftNode, const DOMNode* rightNode)
    : XMLCompareException(leftNode, rightNode)
{
}

Nuv::UniString NodeNamesDontMatchException::GetText() const
{
    return Report(*this, "Diff at nodes:\n\t- %s\n\t- %s\n\tNode names don't match.");
}

NodeTypesDontMatchException::NodeTypesDontMatchException(const DOMNode* leftNode, const DOMNode* rightNode)
    : XMLCompareException(leftNode, rightNode)
    , nodeType{leftNode->getNodeType(), rightNode->getNodeType()}
{
}

Nuv::UniString NodeTypesDontMatchException::GetText() const
{
    return Report(*this,
                  "Node type mismatch at nodes:\n\t- %s\n\t- %s\n\tThe nodes are not the same type.\n"
                  "\tLeft node is type %d and the right node is type %d "
                  "(see enum \"NodeType\" for their meaning).\n"
                  "\tYou can skip these node types by rejecting themin the NodeFilter object given to "
                  "the TreeWalker.",
                  nodeType.left, nodeType.right);
}

DOMNode::NodeType NodeTypesDontMatchException::GetNodeType(Side side) const
{
    return static_cast<DOMNode::NodeType>(nodeType[side]);
}

NotSupportedNodeTypesException::NotSupportedNodeTypesException(const DOMNode* leftNode,
                                                               const DOMNode* rightNode)
    : XMLCompareException(leftNode, rightNode)
    , nodeType{leftNode->getNodeType(), rightNode->getNodeType()}
{
}

Nuv::UniString NotSupportedNodeTypesException::GetText() const
{
    return Report(*this,
                  "Node type error at nodes:\n\t- %s\n\t- %s\n"
                  "\tNot both nodes are supported for comparison:\n"
                  "\tLeft node is type %d and the right node is type %d "
                  "(see enum \"NodeType\" for their meaning).\n"
                  "\tYou can skip these node types by rejecting themin the NodeFilter object given to "
                  "the TreeWalker.",
                  nodeType.left, nodeType.right);
}

DOMNode::NodeType NotSupportedNodeTypesException::GetNodeType(Side side) const
{
    return static_cast<DOMNode::NodeType>(nodeType[side]);
}

OneNodeHasMoreChildrenThanTheOtherException::OneNodeHasMoreChildrenThanTheOtherException(
    const DOMNode* leftNode, const DOMNode* rightNode, Side moreOn)
    : XMLCompareException(leftNode, rightNode)
    , whichHasMoreChildren(moreOn)
{
}

Nuv::UniString OneNodeHasMoreChildrenThanTheOtherException::GetText() const
{
    return Report(*this, "Diff at nodes:\n\t- %s\n\t- %s\n\tThe node on the %s has more children.",
                  SideWord(whichHasMoreChildren));
}

XMLCompareException::Side OneNodeHasMoreChildrenThanTheOtherException::GetWhichHasMoreChildren() const
{
    return whichHasMoreChildren;
}

OneNodeIsElementOneIsTextException::OneNodeIsElementOneIsTextException(const DOMNode* leftNode,
                                                                       const DOMNode* rightNode)
    : NodeTypesDontMatchException(leftNode, rightNode)
    , textValue((leftNode->getNodeType() == DOMNode::TEXT_NODE ? leftNode : rightNode)->getNodeValue())
{
}

Nuv::UniString OneNodeIsElementOneIsTextException::GetText() const
{
    return Report(*this,
                  "Node type mismatch at nodes:\n\t- %s\n\t- %s\n"
                  "\tOne node is Element, the other is Text.\n"
                  "\tThe value of the text is \"%s\".",
                  textValue);
}

Nuv::UniString OneNodeIsElementOneIsTextException::GetTextValue() const { return textValue; }

TextNodeValuesDontMatchException::TextNodeValuesDontMatchException(const DOMNode* leftText,
                                                                   const DOMNode* rightText)
    : XMLCompareException(leftText->getParentNode(), rightText->getParentNode())
    , value{leftText->getNodeValue(), rightText->getNodeValue()}
{
}

Nuv::UniString TextNodeValuesDontMatchException::GetText() const
{
    return Report(*this, "Diff at nodes:\n\t- %s\n\t- %s\n\tText node values \"%s\" and \"%s\" don't match.",
                  value.left, value.right);
}

Nuv::UniString TextNodeValuesDontMatchException::GetTextNodeValue(Side side) const { return value[side]; }

NoElementsInDocumentException::NoElementsInDocumentException(Side emptySide)
    : side(emptySide)
{
}

Nuv::UniString NoElementsInDocumentException::GetText() const
{
    Nuv::UniString text;
    text.Printf("There is no valid element in the XML-document on the %s.", SideWord(side));
    return text;
}

} // namespace NuvXML
