#pragma once

#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

//! [decision]
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
//! [decision]
