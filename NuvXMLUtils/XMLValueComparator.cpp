#include "NuvXMLUtils/XMLValueComparator.hpp"

#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/TextView.hpp"
#include "NuvXMLUtils/XMLCompareOptions.hpp"

#include <cmath>

using xercesc_3_0::DOMText;

namespace NuvXML
{
namespace
{

std::u16string_view ValueOf(const DOMText* text)
{
    return text ? ViewOf(text->getNodeValue()) : std::u16string_view();
}

bool AreTextsEqual(std::u16string_view left, std::u16string_view right)
{
    return Nuv::EqualIgnoringCase(Nuv::Trimmed(left), Nuv::Trimmed(right));
}

bool IsWithinEpsilon(double difference, const IXMLCompareOptions* options)
{
    const double epsilon = options ? options->GetDoubleEps() : 0.0;
    return epsilon == 0.0 ? difference == 0.0 : epsilon > difference;
}

} // namespace

XMLValueComparator::XMLValueComparator() = default;
XMLValueComparator::XMLValueComparator(const XMLValueComparator&) = default;
XMLValueComparator& XMLValueComparator::operator=(const XMLValueComparator&) = default;
XMLValueComparator::~XMLValueComparator() = default;

bool XMLValueComparator::CompareValues(const Nuv::UniString& left, const Nuv::UniString& right,
                                       const IXMLCompareOptions& compareOptions)
{
    leftString = left;
    rightString = right;
    options = &compareOptions;
    isTextNodeMode = false;
    return IsEqual();
}

bool XMLValueComparator::CompareValues(const DOMText* left, const DOMText* right,
                                       const IXMLCompareOptions& compareOptions)
{
    leftText = left;
    rightText = right;
    options = &compareOptions;
    isTextNodeMode = true;
    return IsEqual();
}

std::u16string_view XMLValueComparator::LeftValue() const
{
    return isTextNodeMode ? ValueOf(leftText) : leftString.View();
}

std::u16string_view XMLValueComparator::RightValue() const
{
    return isTextNodeMode ? ValueOf(rightText) : rightString.View();
}

XMLCompareString::XMLCompareString() = default;
XMLCompareString::XMLCompareString(const XMLCompareString&) = default;
XMLCompareString& XMLCompareString::operator=(const XMLCompareString&) = default;
XMLCompareString::~XMLCompareString() = default;

bool XMLCompareString::IsEqual() const { return AreTextsEqual(LeftValue(), RightValue()); }

XMLCompareStringCaseSensitive::XMLCompareStringCaseSensitive() = default;
XMLCompareStringCaseSensitive::XMLCompareStringCaseSensitive(const XMLCompareStringCaseSensitive&) = default;
XMLCompareStringCaseSensitive&
XMLCompareStringCaseSensitive::operator=(const XMLCompareStringCaseSensitive&) = default;
XMLCompareStringCaseSensitive::~XMLCompareStringCaseSensitive() = default;

bool XMLCompareStringCaseSensitive::IsEqual() const
{
    return Nuv::Trimmed(LeftValue()) == Nuv::Trimmed(RightValue());
}

XMLCompareInt::XMLCompareInt() = default;
XMLCompareInt::XMLCompareInt(const XMLCompareInt&) = default;
XMLCompareInt& XMLCompareInt::operator=(const XMLCompareInt&) = default;
XMLCompareInt::~XMLCompareInt() = default;

bool XMLCompareInt::IsEqual() const
{
    int left = 0;
    int right = 0;
    return Nuv::strtovalue(LeftValue(), left) && Nuv::strtovalue(RightValue(), right) && left == right;
}

XMLCompareDouble::XMLCompareDouble() = default;
XMLCompareDouble::XMLCompareDouble(const XMLCompareDouble&) = default;
XMLCompareDouble& XMLCompareDouble::operator=(const XMLCompareDouble&) = default;
XMLCompareDouble::~XMLCompareDouble() = default;

bool XMLCompareDouble::IsEqual() const
{
    double left = 0.0;
    double right = 0.0;
    return Nuv::strtovalue(LeftValue(), left) && Nuv::strtovalue(RightValue(), right) &&
           IsWithinEpsilon(std::fabs(left - right), GetOptions());
}

XMLCompareAuto::XMLCompareAuto() = default;
XMLCompareAuto::XMLCompareAuto(const XMLCompareAuto&) = default;
XMLCompareAuto& XMLCompareAuto::operator=(const XMLCompareAuto&) = default;
XMLCompareAuto::~XMLCompareAuto() = default;

bool XMLCompareAuto::IsEqual() const
{
    const std::u16string_view leftValue = LeftValue();
    const std::u16string_view rightValue = RightValue();
    // Identical texts are numbers whose difference is 0, or equal strings: nothing to parse, unless the
    // epsilon lets no difference pass at all.
    if (leftValue == rightValue && IsWithinEpsilon(0.0, GetOptions()))
        return true;
    double left = 0.0;
    double right = 0.0;
    if (Nuv::strtovalue(leftValue, left) && Nuv::strtovalue(rightValue, right))
        return IsWithinEpsilon(std::fabs(left - right), GetOptions());
    return AreTextsEqual(leftValue, rightValue);
}

} // namespace NuvXML
