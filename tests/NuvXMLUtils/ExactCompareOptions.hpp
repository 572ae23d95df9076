/// @file
/// Options that take nothing for equal but the same characters.
#pragma once

#include "NuvXMLUtils/XMLCompare.hpp"

#include <string_view>

namespace NuvTest
{

class ExactComparator : public NuvXML::XMLValueComparator
{
    bool IsEqual() const override { return LeftValue() == RightValue(); }
};

class ExactCompareOptions : public NuvXML::StrictOrderAutoValueCompareOptions
{
  protected:
    ExactCompareOptions* Clone() const override { return new ExactCompareOptions(*this); }

    bool AreNodeNamesEqual(const xercesc_3_0::DOMNode* left, const xercesc_3_0::DOMNode* right) const override
    {
        return std::u16string_view(left->getNodeName()) == right->getNodeName();
    }

    NuvXML::XMLValueComparator* GetAttributeValueComparator(const xercesc_3_0::DOMAttr*) const override
    {
        return new ExactComparator;
    }

    NuvXML::XMLValueComparator* GetValueComparator() const override { return new ExactComparator; }
};

} // namespace NuvTest
