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
                    static_cast<unsigned int>(text.size()), ValidatingXMLParser::LineInfoParser::Val_Auto,
                    true, Nuv::UniString(u"sample"), nullptr, nullptr, nullptr));
}

} // namespace

// README: begin
int main()
{
    const auto left = Load("<Wall> <Height>2.7500</Height> <Name>North</Name> </Wall>");
    const auto right = Load("<Wall><Height>2.7501</Height><Name>South</Name></Wall>");
    NuvXML::StrictOrderAutoValueCompareOptions options;
    options.SetDoubleEps(0.001);
    NuvXML::SkipWhitespaceTextsCompareFilter filter;
    NuvXML::XMLCompareStrictOrder comparator;
    try
    {
        NuvXML::DoXMLCompare(left.get(), right.get(), &comparator, &filter, options);
        return 1;
    }
    catch (const NuvXML::XMLCompareException& difference)
    {
        std::cout << difference.GetText() << '\n'; // not the heights: North and South
    }
}
// README: end
