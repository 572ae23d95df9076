#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

#include <vector>

/// The standard options, but the attribute that tells when a project was saved is not compared.
class WithoutTimeStamp : public NuvXML::StrictOrderAutoValueCompareOptions
{
  protected:
    WithoutTimeStamp* Clone() const override { return new WithoutTimeStamp(*this); }
    bool AcceptAttribute(const xercesc_3_0::DOMAttr* attribute) const override
    {
        return Nuv::UniString(attribute->getName()) != u"saved";
    }
};

/// The reports of all differences between two projects, in document order. Elements are paired by position;
/// of two whose names differ the contents are not looked at.
std::vector<Nuv::UniString> AllDifferences(const xercesc_3_0::DOMDocument& left,
                                           const xercesc_3_0::DOMDocument& right,
                                           xercesc_3_0::DOMNodeFilter& filter, double epsilon);
