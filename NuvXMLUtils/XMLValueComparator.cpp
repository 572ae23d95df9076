#include "NuvXMLUtils/XMLValueComparator.hpp"

#include "NuvRoot/ValueText.hpp"
#include "NuvXMLUtils/TextView.hpp"
#include "NuvXMLUtils/XMLCompareOptions.hpp"

#include <cmath>
#include <optional>

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

/// Nothing unless both texts are numbers.
std::optional<double> DistanceBetween(std::u16string_view left, std::u16string_view right)
{
    double leftNumber = 0.0;
    double rightNumber = 0.0;
    if (!Nuv::strtovalue(left, leftNumber) || !Nuv::strtovalue(right, rightNumber))
        return std::nullopt;
    return std::fabs(leftNumber - rightNumber);
}

bool IsWithinEpsilon(double distance, const IXMLCompareOptions* options)
{
    const double epsilon = options ? options->GetDoubleEps() : 0.0;
    return epsilon == 0.0 ? distance == 0.0 : epsilon > distance;
}

bool AreSameTexts(std::u16string_view left, std::u16string_view right)
{
    return Nuv::Trimmed(left) == Nuv::Trimmed(right);
}

/// Compares two values as numbers if they are, else by `areTextsEqual`.
template <class Predicate>
bool AreValuesEqual(std::u16string_view left, std::u16string_view right, const IXMLCompareOptions* options,
                    Predicate areTextsEqual)
{
    // Identical texts are numbers whose distance is 0, or equal strings: nothing to parse, unless the
    // epsilon lets no distance pass at all.
    if (left == right && IsWithinEpsilon(0.0, options))
        return true;
    const std::optional<double> distance = DistanceBetween(left, right);
    return distance ? IsWithinEpsilon(*distance, options) : areTextsEqual(left, right);
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

bool XMLCompareStringCaseSensitive::IsEqual() const { return AreSameTexts(LeftValue(), RightValue()); }

bool XMLCompareInt::IsEqual() const
{
    int left = 0;
    int right = 0;
    return Nuv::strtovalue(LeftValue(), left) && Nuv::strtovalue(RightValue(), right) && left == right;
}

bool XMLCompareDouble::IsEqual() const
{
    const std::optional<double> distance = DistanceBetween(LeftValue(), RightValue());
    return distance && IsWithinEpsilon(*distance, GetOptions());
}

bool XMLCompareAuto::IsEqual() const
{
    return AreValuesEqual(LeftValue(), RightValue(), GetOptions(), AreTextsEqual);
}

bool XMLCompareAutoCaseSensitive::IsEqual() const
{
    return AreValuesEqual(LeftValue(), RightValue(), GetOptions(), AreSameTexts);
}

} // namespace NuvXML
