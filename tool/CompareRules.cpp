#include "CompareRules.hpp"

#include <xercesc/util/XMLString.hpp>

#include <typeinfo>
#include <utility>

using namespace NuvXML;
using xercesc_3_0::DOMAttr;
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
