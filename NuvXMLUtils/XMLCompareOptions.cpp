#include "NuvXMLUtils/XMLCompareOptions.hpp"

#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/Attributes.hpp"
#include "NuvXMLUtils/TextView.hpp"
#include "NuvXMLUtils/XMLCompareException.hpp"
#include "NuvXMLUtils/XMLNodeComparator.hpp"
#include "NuvXMLUtils/XMLValueComparator.hpp"

#include <xercesc/util/XMLString.hpp>

#include <cmath>
#include <utility>

using xercesc_3_0::DOMAttr;
using xercesc_3_0::DOMElement;
using xercesc_3_0::DOMNode;
using xercesc_3_0::XMLString;

namespace NuvXML
{
namespace
{

/// Epsilon markers that are nearer to each other than this agree.
constexpr double EpsilonMarkerTolerance = 1e-12;

const DOMAttr* FindAttribute(const DOMElement* element, const Nuv::UniString& name)
{
    return element && !name.IsEmpty() ? element->getAttributeNode(name.ToUTF16()) : nullptr;
}

} // namespace

double StrictOrderAutoValueCompareOptions::GetDoubleEps() const { return epsilon; }

void StrictOrderAutoValueCompareOptions::SetDoubleEps(double newEpsilon) { epsilon = newEpsilon; }

StrictOrderAutoValueCompareOptions* StrictOrderAutoValueCompareOptions::Clone() const
{
    return new StrictOrderAutoValueCompareOptions(*this);
}

bool StrictOrderAutoValueCompareOptions::AcceptAttribute(const DOMAttr*) const { return true; }

bool StrictOrderAutoValueCompareOptions::AreNodeNamesEqual(const DOMNode* left, const DOMNode* right) const
{
    const XMLCh* const leftName = left->getNodeName();
    const XMLCh* const rightName = right->getNodeName();
    return XMLString::equals(leftName, rightName) ||
           Nuv::EqualIgnoringCase(ViewOf(leftName), ViewOf(rightName));
}

void StrictOrderAutoValueCompareOptions::CompareSpecialTypeNodes(const DOMNode* left, const DOMNode* right)
{
    throw NotSupportedNodeTypesException(left, right);
}

XMLValueComparator* StrictOrderAutoValueCompareOptions::GetAttributeValueComparator(const DOMAttr*) const
{
    return new XMLCompareAuto;
}

XMLValueComparator* StrictOrderAutoValueCompareOptions::GetValueComparator() const
{
    return new XMLCompareAuto;
}

XMLNodeComparator* StrictOrderAutoValueCompareOptions::PrepareNodeComparator(const DOMElement*,
                                                                             const DOMElement*)
{
    return new XMLCompareStrictOrder;
}

bool StrictOrderAutoValueCompareOptions::CanOptionsChangeAndEffectNotChildNodes() const { return false; }

AttrRuledCompareOptions* AttrRuledCompareOptions::Clone() const { return new AttrRuledCompareOptions(*this); }

AttrRuledCompareOptions::ValueType AttrRuledCompareOptions::ValueTypeNamed(std::u16string_view word)
{
    if (Nuv::EqualIgnoringCase(word, u"int"))
        return ValueType::Int;
    if (Nuv::EqualIgnoringCase(word, u"double"))
        return ValueType::Double;
    if (Nuv::EqualIgnoringCase(word, u"string"))
        return ValueType::String;
    return ValueType::Auto;
}

XMLValueComparator* AttrRuledCompareOptions::GetValueComparator() const
{
    switch (currentValueType)
    {
    case ValueType::Int:
        return new XMLCompareInt;
    case ValueType::Double:
        return new XMLCompareDouble;
    case ValueType::String:
        return new XMLCompareString;
    default:
        return new XMLCompareAuto;
    }
}

XMLNodeComparator* AttrRuledCompareOptions::PrepareNodeComparator(const DOMElement* left,
                                                                  const DOMElement* right)
{
    currentValueType = ValueType::Auto;
    SetCurrentValueType(left, right);
    return new XMLCompareStrictOrder;
}

bool AttrRuledCompareOptions::CanOptionsChangeAndEffectNotChildNodes() const { return true; }

void AttrRuledCompareOptions::SetMarkerName(Nuv::UniString MarkerNames::*which,
                                            const Nuv::UniString& attributeName)
{
    auto changed = std::make_shared<MarkerNames>(*markers);
    (*changed).*which = attributeName;
    markers = std::move(changed);
}

void AttrRuledCompareOptions::SetTypeDeciderAtt(const Nuv::UniString& attributeName)
{
    SetMarkerName(&MarkerNames::typeAttribute, attributeName);
}

Nuv::UniString AttrRuledCompareOptions::GetTypeDeciderAtt() { return markers->typeAttribute; }

void AttrRuledCompareOptions::SetEpsAtt(const Nuv::UniString& attributeName)
{
    SetMarkerName(&MarkerNames::epsilonAttribute, attributeName);
}

Nuv::UniString AttrRuledCompareOptions::GetEpsAtt() { return markers->epsilonAttribute; }

const DOMAttr* AttrRuledCompareOptions::GetTypeAttribute(const DOMElement* element) const
{
    return FindAttribute(element, markers->typeAttribute);
}

void AttrRuledCompareOptions::SetCurrentValueType(const DOMElement* left, const DOMElement* right)
{
    const DOMAttr* const leftType = GetTypeAttribute(left);
    const DOMAttr* const rightType = GetTypeAttribute(right);
    const bool disagree =
        leftType && rightType && XMLString::compareIString(ValueOf(*leftType), ValueOf(*rightType));
    if (const DOMAttr* const type = leftType ? leftType : rightType; type && !disagree)
        currentValueType = ValueTypeNamed(ViewOf(ValueOf(*type)));
    DoValueTypeSpecificUpdates(left, right);
}

void AttrRuledCompareOptions::DoValueTypeSpecificUpdates(const DOMElement* left, const DOMElement* right)
{
    const DOMAttr* const leftMarker = FindAttribute(left, markers->epsilonAttribute);
    const DOMAttr* const rightMarker = FindAttribute(right, markers->epsilonAttribute);
    double leftEpsilon = 0.0;
    double rightEpsilon = 0.0;
    if (leftMarker && !Nuv::strtovalue(ValueOf(*leftMarker), leftEpsilon))
        return;
    if (rightMarker && !Nuv::strtovalue(ValueOf(*rightMarker), rightEpsilon))
        return;
    if (leftMarker && rightMarker && !(std::fabs(leftEpsilon - rightEpsilon) < EpsilonMarkerTolerance))
        return;
    if (leftMarker)
        SetDoubleEps(leftEpsilon);
    else if (rightMarker)
        SetDoubleEps(rightEpsilon);
}

} // namespace NuvXML
