#include "NuvXMLUtils/DOMHelpers.hpp"

#include <xercesc/dom/DOMImplementation.hpp>

#include <iostream>

// README: begin
int main()
{
    NuvXMLUtils::DOMDocumentSentry document(
        xercesc_3_0::DOMImplementation::getImplementation()->createDocument(nullptr, u"settings", nullptr));
    xercesc_3_0::DOMElement* root = document->getDocumentElement();
    const auto* zoom = NuvXMLUtils::NewDoubleTag(root, "zoom", 1.25, 1);
    const auto* title = NuvXMLUtils::NewStringTag(root, "title", u"any ]]> text", 1);
    try
    {
        std::cout << NuvXMLUtils::GetDoubleTag(zoom) << '\n';
        NuvXMLUtils::GetSLongTag(title);
    }
    catch (const NuvXMLUtils::ConvException& exception)
    {
        std::cout << exception.message << '\n'; // Tag 'title'; One text node expected in tag 'title'
    }
}
// README: end
