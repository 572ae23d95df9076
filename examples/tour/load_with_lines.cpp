#include "NuvXMLUtils/LoadDocument.hpp"

#include <xercesc/dom/DOMElement.hpp>

#include <iostream>

// README: begin
int main()
{
    const NuvXML::Loaded damaged = NuvXML::LoadDocument("<Wall>\n  <Height>275</Heigth>\n</Wall>");
    if (!damaged)
        std::cout << "line " << damaged.place.lineNumber << ": " << damaged.reason << '\n';

    const NuvXML::Loaded wall = NuvXML::LoadDocument("<Wall>\n  <Height>275</Height>\n</Wall>");
    const auto* height = wall.document->getDocumentElement()->getFirstElementChild();
    std::cout << "Height is on line " << wall.lines.Find(height)->lineNumber << '\n';
}
// README: end
