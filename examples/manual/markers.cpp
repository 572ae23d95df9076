// Documents that say by marker attributes how they want to be compared.

#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

#include <iostream>
#include <string_view>

namespace
{

/// Takes no notice of the markers themselves: here one document has them and the other has not.
class MarkedOnOneSide : public NuvXML::AttrRuledCompareOptions
{
  protected:
    MarkedOnOneSide* Clone() const override { return new MarkedOnOneSide(*this); }
    bool AcceptAttribute(const xercesc_3_0::DOMAttr* attribute) const override
    {
        const Nuv::UniString name(attribute->getName());
        return name != u"nuv_eps" && name != u"nuv_type";
    }
};

void Compare(std::string_view expected, std::string_view actual)
{
    const auto left = NuvXML::LoadDocument(expected).document;
    const auto right = NuvXML::LoadDocument(actual).document;
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    NuvXML::XMLCompareStrictOrder comparator;
    try
    {
        NuvXML::DoXMLCompare(left.get(), right.get(), &comparator, &filter, MarkedOnOneSide());
        std::cout << "Equal\n";
    }
    catch (const NuvXML::TextNodeValuesDontMatchException& difference)
    {
        std::cout << difference.GetNodePathUniString(NuvXML::XMLCompareException::Left) << ": "
                  << difference.GetTextNodeValue(NuvXML::XMLCompareException::Left) << " and "
                  << difference.GetTextNodeValue(NuvXML::XMLCompareException::Right) << '\n';
    }
}

} // namespace

int main()
{
    Compare("<Wall nuv_eps='0.1'><Height>2.75</Height></Wall>", "<Wall><Height>2.80</Height></Wall>");
    Compare("<Wall><Height nuv_eps='0.01'>2.75</Height></Wall>", "<Wall><Height>2.80</Height></Wall>");
    Compare("<Wall><Number>007</Number></Wall>", "<Wall><Number>7</Number></Wall>");
    Compare("<Wall><Number nuv_type='string'>007</Number></Wall>", "<Wall><Number>7</Number></Wall>");
}
