#include "NuvXMLUtils/TreeComparison.hpp"

#include "NuvRoot/Containers.hpp"
#include "NuvXMLUtils/Attributes.hpp"
#include "NuvXMLUtils/OutOfMemory.hpp"
#include "NuvXMLUtils/SkipWhitespaceTextsCompareFilter.hpp"
#include "NuvXMLUtils/TextView.hpp"
#include "NuvXMLUtils/XMLValueComparator.hpp"

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/DOMText.hpp>
#include <xercesc/dom/impl/DOMTreeWalkerImpl.hpp>
#include <xercesc/util/XMLString.hpp>

#include <string_view>
#include <typeinfo>
#include <utility>

using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMDocument;
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

/// Makes a difference of the arguments and hands it over with the nodes, or throws it where there is no sink.
/// Cold, so that what is equal does not carry the weight of it.
template <class Difference, class... Arguments>
[[gnu::cold]] void Report(DifferenceSink* sink, const DOMNode* left, const DOMNode* right,
                          const Arguments&... arguments)
{
    if (!sink)
        throw Difference(arguments...);
    sink->Take(Difference(arguments...), left, right);
}

/// Null for a node that has no such attribute, or is not an element.
const DOMNode* AttributeOf(const DOMNode* node, const Nuv::UniString& name)
{
    const DOMNamedNodeMap* const attributes = node->getAttributes();
    return attributes ? attributes->getNamedItem(name.ToUTF16()) : nullptr;
}

/// Hands over a difference that the options have thrown while `left` and `right` were compared, with the
/// attributes that it names. Throws it again where there is no sink.
void ReportThrown(DifferenceSink* sink, const XMLCompareException& difference, const DOMNode* left,
                  const DOMNode* right)
{
    if (!sink)
        throw;
    if (const auto* const missing = dynamic_cast<const AttributeMissingException*>(&difference))
    {
        const bool isOnRight = missing->GetWhereItIsMissing() == XMLCompareException::Left;
        const DOMNode*& present = isOnRight ? right : left;
        present = AttributeOf(present, missing->GetAttributeName());
    }
    else if (const auto* const unequal = dynamic_cast<const AttributesDontMatchException*>(&difference))
    {
        left = AttributeOf(left, unequal->GetAttributeName());
        right = AttributeOf(right, unequal->GetAttributeName());
    }
    sink->Take(difference, left, right);
}

/// Walkers take and give nodes that may be changed; the comparison changes none.
DOMNode* Changeable(const DOMNode* node) { return const_cast<DOMNode*>(node); }

DOMTreeWalker* NewWalker(const DOMNode* root, DOMNodeFilter* filter)
{
    return WithOwnOutOfMemory(
        [&]
        {
            return root->getOwnerDocument()->createTreeWalker(Changeable(root), DOMNodeFilter::SHOW_ALL,
                                                              filter, false);
        });
}

const DOMElement* AsElement(const DOMNode* node)
{
    return node->getNodeType() == DOMNode::ELEMENT_NODE ? static_cast<const DOMElement*>(node) : nullptr;
}

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

bool IsStrictOrder(const XMLNodeComparator& comparator)
{
    return typeid(comparator) == typeid(XMLCompareStrictOrder);
}

/// What `walker.nextSibling()` gives on `child`. At the last child a walker asks the filter whether it skips
/// the parent, behind which it would go on. To get there takes as long as the rest of the pair, and it is not
/// needed for an only child, such as the text of an element, when elements are never skipped.
const DOMNode* NextSibling(DOMTreeWalker& walker, const DOMNode* child, const DOMNode* parent,
                           bool showsEveryElement)
{
    if (showsEveryElement && child == parent->getFirstChild() && !child->getNextSibling())
        return nullptr;
    return walker.nextSibling();
}

} // namespace

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

void TreeComparison::Compare(const DOMDocument* left, const DOMDocument* right, XMLNodeComparator* comparator,
                             DOMNodeFilter* filter, const IXMLCompareOptions& options, DifferenceSink* sink)
{
    const DOMNode* const leftRoot = left->getDocumentElement();
    const DOMNode* const rightRoot = right->getDocumentElement();
    if (leftRoot && rightRoot)
        Compare(leftRoot, rightRoot, comparator, filter, options, sink);
    else
        Report<NoElementsInDocumentException>(
            sink, leftRoot, rightRoot, leftRoot ? XMLCompareException::Right : XMLCompareException::Left);
}

void TreeComparison::Compare(const DOMNode* left, const DOMNode* right, XMLNodeComparator* comparator,
                             DOMNodeFilter* filter, const IXMLCompareOptions& options, DifferenceSink* sink)
try
{
    DOMTreeWalker* const leftWalker = NewWalker(left, filter);
    DOMTreeWalker* const rightWalker = NewWalker(right, filter);
    const Nuv::Ref<IXMLCompareOptions> ownOptions(options.Clone());
    // Made for what it does to the options.
    const std::unique_ptr<XMLNodeComparator> unused(
        ownOptions->PrepareNodeComparator(AsElement(left), AsElement(right)));
    if (!sink)
        comparator->CompareNodes(leftWalker, rightWalker, *ownOptions);
    else if (CompareElements(left, right, *ownOptions, sink))
        CompareChildren(*leftWalker, *rightWalker, left, right, *ownOptions, sink);
}
catch (const XMLCompareException& difference)
{
    ReportThrown(sink, difference, left, right);
}

TreeComparison::TreeComparison(DOMTreeWalker& onLeft, DOMTreeWalker& onRight, const Parents& firstParents,
                               DifferenceSink* differenceSink)
    : leftWalker(onLeft)
    , rightWalker(onRight)
    , leftShowsEveryElement(ShowsEveryElement(onLeft))
    , rightShowsEveryElement(ShowsEveryElement(onRight))
    , sink(differenceSink)
    , parents(firstParents)
{
}

TreeComparison::~TreeComparison()
{
    while (!levels.empty())
        Leave();
}

void TreeComparison::CompareChildren(DOMTreeWalker& leftWalker, DOMTreeWalker& rightWalker,
                                     const DOMNode* left, const DOMNode* right, IXMLCompareOptions& options,
                                     DifferenceSink* sink)
{
    TreeComparison(leftWalker, rightWalker, {left, right, &options}, sink).Walk();
}

void TreeComparison::Walk()
{
    for (bool isFirst = true;;)
        if (GoToPair(isFirst))
            isFirst = EntersPair();
        else if (levels.empty())
            return;
        else
        {
            Leave();
            isFirst = false;
        }
}

/// Goes to the first pair of children, or to the next; false where there is none.
bool TreeComparison::GoToPair(bool isFirst)
try
{
    leftChild = isFirst ? leftWalker.firstChild()
                        : NextSibling(leftWalker, leftChild, parents.left, leftShowsEveryElement);
    rightChild = isFirst ? rightWalker.firstChild()
                         : NextSibling(rightWalker, rightChild, parents.right, rightShowsEveryElement);
    if (leftChild && rightChild)
        return true;
    if (leftChild || rightChild)
        Report<OneNodeHasMoreChildrenThanTheOtherException>(
            sink, leftChild ? leftChild : parents.left, rightChild ? rightChild : parents.right, parents.left,
            parents.right, leftChild ? XMLCompareException::Left : XMLCompareException::Right);
    return false;
}
catch (const XMLCompareException& difference)
{
    ReportThrown(sink, difference, parents.left, parents.right);
    return false;
}

/// Compares the pair on which the walkers stand, except for what is below.
/// @return whether that is to be compared now, with the pair as the parents
bool TreeComparison::EntersPair()
try
{
    PositionKeeper pair(leftWalker, rightWalker);
    switch (KindOf(pair.LeftNode(), pair.RightNode()))
    {
    case PairKind::Elements:
        return EntersElements(pair);
    case PairKind::Texts:
        CompareTexts(pair.LeftNode(), pair.RightNode(), *parents.options, sink);
        break;
    case PairKind::Others:
        CompareOthers(pair.LeftNode(), pair.RightNode(), *parents.options, sink);
        break;
    }
    return false;
}
catch (const XMLCompareException& difference)
{
    ReportThrown(sink, difference, leftChild, rightChild);
    return false;
}

bool TreeComparison::EntersElements(PositionKeeper& pair)
{
    const auto* const left = static_cast<const DOMElement*>(pair.LeftNode());
    const auto* const right = static_cast<const DOMElement*>(pair.RightNode());
    Nuv::Ref<IXMLCompareOptions> options = OptionsForChildren(*parents.options);
    std::unique_ptr<XMLNodeComparator> comparator(options->PrepareNodeComparator(left, right));
    pair.Restore();
    if (!sink && !IsStrictOrder(*comparator))
    {
        comparator->CompareNodes(&leftWalker, &rightWalker, *options);
        return false;
    }
    PositionKeeper pairBelow(leftWalker, rightWalker);
    if (!sink)
        comparator->Begin(leftWalker, rightWalker, pairBelow.LeftNode(), pairBelow.RightNode(), *options);
    if (!CompareElements(left, right, *options, sink))
        return false;
    const Parents entered{left, right, options.Get()};
    levels.push_back({parents, std::move(options), std::move(comparator)});
    parents = entered;
    pairBelow.Dismiss();
    pair.Dismiss();
    return true;
}

/// Goes back from the parents to the pair of children that they are.
void TreeComparison::Leave()
{
    Level& level = levels.back();
    PutWalkersOnParents();
    level.comparator.reset();
    level.options = nullptr;
    PutWalkersOnParents();
    leftChild = parents.left;
    rightChild = parents.right;
    parents = level.outer;
    levels.pop_back();
}

void TreeComparison::PutWalkersOnParents() const
{
    leftWalker.setCurrentNode(Changeable(parents.left));
    rightWalker.setCurrentNode(Changeable(parents.right));
}

bool TreeComparison::CompareElements(const DOMNode* left, const DOMNode* right,
                                     const IXMLCompareOptions& options, DifferenceSink* sink)
{
    if (!options.AreNodeNamesEqual(left, right))
    {
        Report<NodeNamesDontMatchException>(sink, left, right, left, right);
        return false;
    }
    CompareAttributes(static_cast<const DOMElement*>(left), static_cast<const DOMElement*>(right), options,
                      sink);
    return true;
}

void TreeComparison::CompareAttributes(const DOMElement* left, const DOMElement* right,
                                       const IXMLCompareOptions& options, DifferenceSink* sink)
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
        {
            Report<AttributeMissingException>(sink, leftAttribute, right, left, right, leftAttribute,
                                              XMLCompareException::Right);
            continue;
        }
        const std::unique_ptr<XMLValueComparator> comparator(
            options.GetAttributeValueComparator(leftAttribute));
        if (!comparator->CompareValues(TextOf(leftAttribute), TextOf(rightAttribute), options))
            Report<AttributesDontMatchException>(sink, leftAttribute, rightAttribute, left, right,
                                                 leftAttribute, rightAttribute);
        compared.Add(leftAttribute->getName());
    }
    for (XMLSize_t i = 0; i < rightAttributes.getLength(); ++i)
    {
        const DOMAttr* const rightAttribute = AttributeAt(rightAttributes, i);
        if (!compared.Contains(rightAttribute->getName(), i) && options.AcceptAttribute(rightAttribute))
            Report<AttributeMissingException>(sink, left, rightAttribute, left, right, rightAttribute,
                                              XMLCompareException::Left);
    }
}

void TreeComparison::CompareTexts(const DOMNode* left, const DOMNode* right,
                                  const IXMLCompareOptions& options, DifferenceSink* sink)
{
    const std::unique_ptr<XMLValueComparator> comparator(options.GetValueComparator());
    if (!comparator->CompareValues(static_cast<const DOMText*>(left), static_cast<const DOMText*>(right),
                                   options))
        Report<TextNodeValuesDontMatchException>(sink, left, right, left, right);
}

void TreeComparison::CompareOthers(const DOMNode* left, const DOMNode* right, IXMLCompareOptions& options,
                                   DifferenceSink* sink)
{
    if (AreElementAndText(left, right))
        Report<OneNodeIsElementOneIsTextException>(sink, left, right, left, right);
    else if (left->getNodeType() != right->getNodeType())
        Report<NodeTypesDontMatchException>(sink, left, right, left, right);
    else
        options.CompareSpecialTypeNodes(left, right);
}

} // namespace NuvXML
