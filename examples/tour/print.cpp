#include "NuvXMLUtils/FormatXMLDoc.hpp"
#include "NuvXMLUtils/ValidatingXMLParser.hpp"

#include <iostream>
#include <string_view>

// README: begin
int main()
{
    const std::string_view text = "<?xml version='1.0' encoding='UTF-8'?><Price unit='€'>12 £</Price>";
    const NuvXML::XercesPtr<xercesc_3_0::DOMDocument> document(
        ParseXMLDoc(reinterpret_cast<const unsigned char*>(text.data()),
                    static_cast<unsigned int>(text.size()), ValidatingXMLParser::LineInfoParser::Val_Auto,
                    true, Nuv::UniString(u"sample"), nullptr, nullptr, nullptr));
    Nuv::MemoryOChannel output;
    const bool isWritten = FormatXMLDoc(document.get(), &output, u"US-ASCII", true);
    std::cout << output.GetBytes(); // ... <Price unit="&#x20AC;">12 &#xA3;</Price>
    return isWritten ? 0 : 1;
}
// README: end
