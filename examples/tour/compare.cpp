#include "NuvXMLUtils/LoadDocument.hpp"
#include "NuvXMLUtils/XMLCompare.hpp"

#include <iostream>

// README: begin
int main()
{
    using NuvXML::LoadDocument;
    const auto left = LoadDocument("<Wall> <Height>2.7500</Height> <Name>North</Name> </Wall>").document;
    const auto right = LoadDocument("<Wall><Height>2.7501</Height><Name>South</Name></Wall>").document;
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
