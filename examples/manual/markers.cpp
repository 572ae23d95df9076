// Documents that say by marker attributes how they want to be compared.

#include "NuvXMLUtils/ValidatingXMLParser.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

#include <iostream>
#include <string_view>

namespace
{

NuvXML::XercesPtr<xercesc_3_0::DOMDocument> Load(std::string_view text)
{
    return NuvXML::XercesPtr<xercesc_3_0::DOMDocument>(
        ParseXMLDoc(reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<unsigned int>(text.size()), ValidatingXMLParser::LineInfoParser::Val_Never,
                    true, Nuv::UniString(u"sample"), nullptr, nullptr, nullptr));
}

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
    const auto left = Load(expected);
    const auto right = Load(actual);
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
