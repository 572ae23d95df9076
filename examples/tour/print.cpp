#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/LoadDocument.hpp"

#include <iostream>

// README: begin
int main()
{
    const NuvXML::Loaded price =
        NuvXML::LoadDocument("<?xml version='1.0' encoding='UTF-8'?><Price unit='€'>12 £</Price>");
    Nuv::MemoryOChannel output;
    const bool isWritten = FormatXMLDoc(price.document.get(), &output, u"US-ASCII", true);
    std::cout << output.GetBytes(); // ... <Price unit="&#x20AC;">12 &#xA3;</Price>
    return isWritten ? 0 : 1;
}
// README: end
