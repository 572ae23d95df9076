#include "CompareRules.hpp"

#include <xercesc/util/XMLString.hpp>

#include <algorithm>
#include <typeinfo>
#include <utility>

using namespace NuvXML;
using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMDocument;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;

namespace Tool
{
namespace
{

/// A comparator that regards case, where `comparator` does not.
std::unique_ptr<XMLValueComparator> WithCase(std::unique_ptr<XMLValueComparator> comparator)
{
    const XMLValueComparator& current = *comparator;
    const std::type_info& type = typeid(current);
    if (type == typeid(XMLCompareAuto))
        return std::make_unique<XMLCompareAutoCaseSensitive>();
    if (type == typeid(XMLCompareString))
        return std::make_unique<XMLCompareStringCaseSensitive>();
    return comparator;
}

/// The comments and processing instructions among `node` and its next siblings, up to the document element.
std::vector<const DOMNode*> NodesFrom(const DOMNode* node)
{
    std::vector<const DOMNode*> nodes;
    for (; node && node->getNodeType() != DOMNode::ELEMENT_NODE; node = node->getNextSibling())
        if (node->getNodeType() == DOMNode::COMMENT_NODE ||
            node->getNodeType() == DOMNode::PROCESSING_INSTRUCTION_NODE)
            nodes.push_back(node);
    return nodes;
}

} // namespace

xercesc_3_0::DOMNodeFilter::FilterAction CommentsFilter::acceptNode(const DOMNode* node) const
{
    return node->getNodeType() == DOMNode::TEXT_NODE ? SkipWhitespaceTextsCompareFilter::acceptNode(node)
                                                     : FILTER_ACCEPT;
}

CompareRules::CompareRules(const CompareSettings& settings)
{
    Choices chosen{settings.byMarkers, settings.caseSensitive, {}};
    for (const std::string& name : settings.ignoredAttributes)
        chosen.ignoredAttributes.insert(Nuv::UniString::FromUTF8(name));
    choices = std::make_shared<const Choices>(std::move(chosen));
    SetDoubleEps(settings.epsilon);
}

bool CompareRules::CompareProlog(const DOMDocument& left, const DOMDocument& right,
                                 const XMLDifferenceHandler& report)
{
    return CompareOutside(left, NodesFrom(left.getFirstChild()), right, NodesFrom(right.getFirstChild()),
                          report);
}

bool CompareRules::CompareEpilog(const DOMDocument& left, const DOMDocument& right,
                                 const XMLDifferenceHandler& report)
{
    return CompareOutside(left, NodesFrom(left.getDocumentElement()->getNextSibling()), right,
                          NodesFrom(right.getDocumentElement()->getNextSibling()), report);
}

bool CompareRules::CompareOutside(const DOMDocument& left, const Nodes& leftNodes, const DOMDocument& right,
                                  const Nodes& rightNodes, const XMLDifferenceHandler& report)
{
    const size_t pairs = std::min(leftNodes.size(), rightNodes.size());
    for (size_t i = 0; i < pairs; ++i)
        try
        {
            ComparePair(leftNodes[i], rightNodes[i]);
        }
        catch (const XMLCompareException& difference)
        {
            if (!report({difference, leftNodes[i], rightNodes[i]}))
                return false;
        }
    if (leftNodes.size() == rightNodes.size())
        return true;
    const bool isMoreOnLeft = leftNodes.size() > pairs;
    return report({OneNodeHasMoreChildrenThanTheOtherException(
                       &left, &right, isMoreOnLeft ? XMLCompareException::Left : XMLCompareException::Right),
                   isMoreOnLeft ? leftNodes[pairs] : &left, isMoreOnLeft ? &right : rightNodes[pairs]});
}

void CompareRules::ComparePair(const DOMNode* left, const DOMNode* right)
{
    if (left->getNodeType() != right->getNodeType())
        throw NodeTypesDontMatchException(left, right);
    CompareSpecialTypeNodes(left, right);
}

CompareRules* CompareRules::Clone() const { return new CompareRules(*this); }

bool CompareRules::AcceptAttribute(const DOMAttr* attribute) const
{
    return choices->ignoredAttributes.empty() || choices->ignoredAttributes.count(attribute->getName()) == 0;
}

bool CompareRules::AreNodeNamesEqual(const DOMNode* left, const DOMNode* right) const
{
    return choices->isCaseSensitive
               ? xercesc_3_0::XMLString::equals(left->getNodeName(), right->getNodeName())
               : AttrRuledCompareOptions::AreNodeNamesEqual(left, right);
}

/// Comments and processing instructions have names (the target of an instruction) and values.
void CompareRules::CompareSpecialTypeNodes(const DOMNode* left, const DOMNode* right)
{
    if (!AreNodeNamesEqual(left, right))
        throw NodeNamesDontMatchException(left, right);
    const std::unique_ptr<XMLValueComparator> comparator(GetValueComparator());
    if (!comparator->CompareValues(Nuv::UniString(left->getNodeValue()),
                                   Nuv::UniString(right->getNodeValue()), *this))
        throw TextNodeValuesDontMatchException(left, right);
}

XMLValueComparator* CompareRules::GetAttributeValueComparator(const DOMAttr* leftAttribute) const
{
    std::unique_ptr<XMLValueComparator> comparator(
        AttrRuledCompareOptions::GetAttributeValueComparator(leftAttribute));
    return choices->isCaseSensitive ? WithCase(std::move(comparator)).release() : comparator.release();
}

XMLValueComparator* CompareRules::GetValueComparator() const
{
    std::unique_ptr<XMLValueComparator> comparator(AttrRuledCompareOptions::GetValueComparator());
    return choices->isCaseSensitive ? WithCase(std::move(comparator)).release() : comparator.release();
}

XMLNodeComparator* CompareRules::PrepareNodeComparator(const DOMElement* left, const DOMElement* right)
{
    return choices->obeysMarkers ? AttrRuledCompareOptions::PrepareNodeComparator(left, right)
                                 : new XMLCompareStrictOrder;
}

bool CompareRules::CanOptionsChangeAndEffectNotChildNodes() const { return choices->obeysMarkers; }

} // namespace Tool
