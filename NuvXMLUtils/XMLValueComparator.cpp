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

bool XMLValueComparator::CompareValues(const Nuv::UniString& left, const Nuv::UniString& right,
                                       const IXMLCompareOptions& options)
{
    leftString = left;
    rightString = right;
    optionsInForce = &options;
    isTextNodeMode = false;
    return IsEqual();
}

bool XMLValueComparator::CompareValues(const DOMText* left, const DOMText* right,
                                       const IXMLCompareOptions& options)
{
    leftText = left;
    rightText = right;
    optionsInForce = &options;
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

bool XMLCompareString::IsEqual() const { return AreTextsEqual(LeftValue(), RightValue()); }

bool XMLCompareStringCaseSensitive::IsEqual() const
{
    return Nuv::Trimmed(LeftValue()) == Nuv::Trimmed(RightValue());
}

bool XMLCompareInt::IsEqual() const
{
    int left = 0;
    int right = 0;
    return Nuv::strtovalue(LeftValue(), left) && Nuv::strtovalue(RightValue(), right) && left == right;
}

bool XMLCompareDouble::IsEqual() const
{
    double left = 0.0;
    double right = 0.0;
    return Nuv::strtovalue(LeftValue(), left) && Nuv::strtovalue(RightValue(), right) &&
           IsWithinEpsilon(std::fabs(left - right), GetOptions());
}

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
