#include "NuvXMLUtils/XMLNodeComparator.hpp"

#include "NuvRoot/Containers.hpp"
#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/SharedObject.hpp"
#include "NuvXMLUtils/Attributes.hpp"
#include "NuvXMLUtils/SkipWhitespaceTextsCompareFilter.hpp"
#include "NuvXMLUtils/TextView.hpp"
#include "NuvXMLUtils/XMLCompareException.hpp"
#include "NuvXMLUtils/XMLCompareOptions.hpp"
#include "NuvXMLUtils/XMLValueComparator.hpp"

#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/dom/impl/DOMTreeWalkerImpl.hpp>
#include <xercesc/util/XMLString.hpp>

#include <memory>
#include <string_view>
#include <typeinfo>

using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNamedNodeMap;
using xercesc_3_0::DOMNode;
using xercesc_3_0::DOMNodeFilter;
using xercesc_3_0::DOMText;
using xercesc_3_0::DOMTreeWalker;
using xercesc_3_0::DOMTreeWalkerImpl;
using xercesc_3_0::XMLString;

namespace NuvXML
{
namespace
{

/// Puts both walkers back, at the end of its scope, to where they stood when it was made.
class PositionKeeper
{
  public:
    PositionKeeper(DOMTreeWalker& left, DOMTreeWalker& right)
        : leftWalker(left)
        , rightWalker(right)
        , leftNode(left.getCurrentNode())
        , rightNode(right.getCurrentNode())
    {
    }
    PositionKeeper(const PositionKeeper&) = delete;
    PositionKeeper& operator=(const PositionKeeper&) = delete;
    ~PositionKeeper() { Restore(); }

    void Restore() const
    {
        leftWalker.setCurrentNode(leftNode);
        rightWalker.setCurrentNode(rightNode);
    }

    const DOMNode* LeftNode() const { return leftNode; }
    const DOMNode* RightNode() const { return rightNode; }

  private:
    DOMTreeWalker& leftWalker;
    DOMTreeWalker& rightWalker;
    DOMNode* leftNode;
    DOMNode* rightNode;
};

/// A set of attribute names, which stay in their document. Most elements have few attributes, for which
/// looking through an array is faster than hashing.
class AttributeNames
{
  public:
    void Add(const XMLCh* name)
    {
        if (count < MaxFirst)
            first[count++] = name;
        else
            AddToOthers(ViewOf(name));
    }

    /// @param likelyIndex the number of the names that were probably added before this one
    bool Contains(const XMLCh* name, size_t likelyIndex) const
    {
        if (likelyIndex < count && XMLString::equals(first[likelyIndex], name))
            return true;
        for (size_t i = 0; i < count; ++i)
            if (XMLString::equals(first[i], name))
                return true;
        return others && others->count(ViewOf(name)) != 0;
    }

  private:
    static constexpr size_t MaxFirst = 16;

    void AddToOthers(std::u16string_view name)
    {
        if (!others)
            others = std::make_unique<Nuv::HashSet<std::u16string_view>>();
        others->insert(name);
    }

    const XMLCh* first[MaxFirst];
    size_t count = 0;
    std::unique_ptr<Nuv::HashSet<std::u16string_view>> others;
};

const DOMText* TextOf(const DOMAttr* attribute)
{
    const DOMNode* const child = attribute->getFirstChild();
    return child && child->getNodeType() == DOMNode::TEXT_NODE ? static_cast<const DOMText*>(child) : nullptr;
}

const DOMAttr* AttributeAt(const DOMNamedNodeMap& attributes, XMLSize_t index)
{
    return static_cast<const DOMAttr*>(attributes.item(index));
}

/// The attribute with the name, or null. Attributes are sorted by name, so that of two equal elements it
/// stands at the same index, which saves the search.
const DOMAttr* FindAttribute(const DOMNamedNodeMap& attributes, const XMLCh* name, XMLSize_t likelyIndex)
{
    const DOMAttr* const likely = AttributeAt(attributes, likelyIndex);
    if (likely && XMLString::equals(likely->getName(), name))
        return likely;
    return static_cast<const DOMAttr*>(attributes.getNamedItem(name));
}

enum class PairKind
{
    Texts,
    Elements,
    Others
};

PairKind KindOf(const DOMNode* left, const DOMNode* right)
{
    const DOMNode::NodeType type = left->getNodeType();
    if (type != right->getNodeType())
        return PairKind::Others;
    switch (type)
    {
    case DOMNode::TEXT_NODE:
        return PairKind::Texts;
    case DOMNode::ELEMENT_NODE:
        return PairKind::Elements;
    default:
        return PairKind::Others;
    }
}

bool AreElementAndText(const DOMNode* left, const DOMNode* right)
{
    const auto leftType = left->getNodeType();
    const auto rightType = right->getNodeType();
    return (leftType == DOMNode::ELEMENT_NODE && rightType == DOMNode::TEXT_NODE) ||
           (leftType == DOMNode::TEXT_NODE && rightType == DOMNode::ELEMENT_NODE);
}

/// Whether nothing of a caller decides what a walker shows, and it shows every element.
bool ShowsEveryElement(DOMTreeWalker& walker)
{
    if (typeid(walker) != typeid(DOMTreeWalkerImpl) || walker.getWhatToShow() != DOMNodeFilter::SHOW_ALL)
        return false;
    const DOMNodeFilter* const filter = walker.getFilter();
    return !filter || typeid(*filter) == typeid(SkipWhitespaceTextsCompareFilter);
}

/// What `walker.nextSibling()` gives on `child`. At the last child a walker asks the filter whether it skips
/// the parent, behind which it would go on. To get there takes as long as the rest of the pair, and it is not
/// needed for an only child, such as the text of an element, when elements are never skipped.
const DOMNode* NextSibling(DOMTreeWalker& walker, const DOMNode* child, const DOMNode* parent)
{
    if (child == parent->getFirstChild() && !child->getNextSibling() && ShowsEveryElement(walker))
        return nullptr;
    return walker.nextSibling();
}

} // namespace

void XMLNodeComparator::CompareNodes(DOMTreeWalker* left, DOMTreeWalker* right, IXMLCompareOptions& options)
{
    const PositionKeeper pair(*left, *right);
    optionsInForce = &options;
    leftWalker = left;
    rightWalker = right;
    leftNode = pair.LeftNode();
    rightNode = pair.RightNode();
    switch (KindOf(leftNode, rightNode))
    {
    case PairKind::Texts:
        ControlNodeComparison();
        break;
    case PairKind::Elements:
        if (!options.AreNodeNamesEqual(leftNode, rightNode))
            throw NodeNamesDontMatchException(leftNode, rightNode);
        CompareAttributes(static_cast<const DOMElement*>(leftNode), static_cast<const DOMElement*>(rightNode),
                          options);
        WalkThrough();
        break;
    case PairKind::Others:
        CompareOtherNodes(leftNode, rightNode);
        break;
    }
}

void XMLNodeComparator::ControlNodeComparison()
{
    const PositionKeeper pair(*leftWalker, *rightWalker);
    const DOMNode* const left = pair.LeftNode();
    const DOMNode* const right = pair.RightNode();
    switch (KindOf(left, right))
    {
    case PairKind::Texts:
        CompareTexts(static_cast<const DOMText*>(left), static_cast<const DOMText*>(right));
        break;
    case PairKind::Elements:
    {
        const Nuv::Ref<IXMLCompareOptions> childOptions(
            optionsInForce->CanOptionsChangeAndEffectNotChildNodes() ? optionsInForce->Clone()
                                                                     : optionsInForce);
        const std::unique_ptr<XMLNodeComparator> comparator(childOptions->PrepareNodeComparator(
            static_cast<const DOMElement*>(left), static_cast<const DOMElement*>(right)));
        pair.Restore();
        comparator->CompareNodes(leftWalker, rightWalker, *childOptions);
        break;
    }
    case PairKind::Others:
        CompareOtherNodes(left, right);
        break;
    }
}

void XMLNodeComparator::CompareTexts(const DOMText* left, const DOMText* right) const
{
    const std::unique_ptr<XMLValueComparator> comparator(optionsInForce->GetValueComparator());
    if (!comparator->CompareValues(left, right, *optionsInForce))
        throw TextNodeValuesDontMatchException(left, right);
}

void XMLNodeComparator::CompareOtherNodes(const DOMNode* left, const DOMNode* right) const
{
    if (AreElementAndText(left, right))
        throw OneNodeIsElementOneIsTextException(left, right);
    if (left->getNodeType() != right->getNodeType())
        throw NodeTypesDontMatchException(left, right);
    optionsInForce->CompareSpecialTypeNodes(left, right);
}

void XMLNodeComparator::CompareAttributes(const DOMElement* left, const DOMElement* right,
                                          const IXMLCompareOptions& options)
{
    const DOMNamedNodeMap& leftAttributes = *left->getAttributes();
    const DOMNamedNodeMap& rightAttributes = *right->getAttributes();
    FetchAttributes(leftAttributes);
    FetchAttributes(rightAttributes);
    AttributeNames compared;
    for (XMLSize_t i = 0; i < leftAttributes.getLength(); ++i)
    {
        const DOMAttr* const leftAttribute = AttributeAt(leftAttributes, i);
        if (!options.AcceptAttribute(leftAttribute))
            continue;
        const DOMAttr* const rightAttribute = FindAttribute(rightAttributes, leftAttribute->getName(), i);
        if (!rightAttribute)
            throw AttributeMissingException(left, right, leftAttribute, XMLCompareException::Right);
        const std::unique_ptr<XMLValueComparator> comparator(
            options.GetAttributeValueComparator(leftAttribute));
        if (!comparator->CompareValues(TextOf(leftAttribute), TextOf(rightAttribute), options))
            throw AttributesDontMatchException(left, right, leftAttribute, rightAttribute);
        compared.Add(leftAttribute->getName());
    }
    for (XMLSize_t i = 0; i < rightAttributes.getLength(); ++i)
    {
        const DOMAttr* const rightAttribute = AttributeAt(rightAttributes, i);
        if (!compared.Contains(rightAttribute->getName(), i) && options.AcceptAttribute(rightAttribute))
            throw AttributeMissingException(left, right, rightAttribute, XMLCompareException::Left);
    }
}

void XMLCompareStrictOrder::WalkThrough()
{
    const DOMNode* left = LeftWalker()->firstChild();
    const DOMNode* right = RightWalker()->firstChild();
    while (left && right)
    {
        ControlNodeComparison();
        left = NextSibling(*LeftWalker(), left, LeftNode());
        right = NextSibling(*RightWalker(), right, RightNode());
    }
    if (left || right)
        throw OneNodeHasMoreChildrenThanTheOtherException(
            LeftNode(), RightNode(), left ? XMLCompareException::Left : XMLCompareException::Right);
}

void XMLCompareRotatedOrder::WalkThrough()
{
    throw Nuv::NuvException(u"Rotated order walkthrough not yet supported.");
}

void XMLCompareNoOrder::WalkThrough() { throw Nuv::NuvException(u"No-order walkthrough not yet supported."); }

} // namespace NuvXML
