#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <xercesc/dom/DOMElement.hpp>

#include <iostream>
#include <string_view>

// README: begin
NuvXML::XercesPtr<xercesc_3_0::DOMDocument> Load(std::string_view text, NodeLocations& lines)
{
    NodeLocationInfo place;
    Nuv::UniString reason;
    NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
        ParseXMLDoc(reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<unsigned int>(text.size()), ValidatingXMLParser::LineInfoParser::Val_Auto,
                    true, Nuv::UniString(u"sample"), &lines, &place, &reason));
    if (!document)
        std::cout << "line " << place.lineNumber << ": " << reason << '\n';
    return document;
}

int main()
{
    NodeLocations lines;
    const auto damaged = Load("<Wall>\n  <Height>275</Heigth>\n</Wall>", lines);
    const auto document = Load("<Wall>\n  <Height>275</Height>\n</Wall>", lines);
    const auto* height = document->getDocumentElement()->getFirstElementChild();
    std::cout << "Height is on line " << lines.Find(height)->lineNumber << '\n';
}
// README: end
