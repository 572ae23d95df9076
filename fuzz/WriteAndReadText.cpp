// Any text as the value of an element and of a CDATA section: it is refused, or comes back as it was written.

#include "fuzz/Support.hpp"

#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    std::u16string units(size / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes, units.size() * sizeof(char16_t));
    Nuv::UniString written(units.c_str()); // a zero ends text in the DOM
    written.ReplaceAll(u"\r", u"\n");

    Nuv::XMLOChannel* output = NuvXML::CreateXMLOChannel(true);
    const NuvXML::XMLOChannelGuard outputGuard(&output);
    output->WriteStartElement("Text");
    output->WriteXMLCDATAString(written);
    output->WriteXML("Value", written);
    output->WriteEndElement();
    Nuv::UniString document;
    try
    {
        document = NuvXML::ExportOChannelToUniString(output);
    }
    catch (const xercesc_3_0::DOMException&)
    {
        return 0; // XML cannot hold the text
    }

    Nuv::XMLIChannel* input = NuvXML::CreateXMLIChannelFromMemory(document, true);
    const NuvXML::XMLIChannelGuard inputGuard(&input);
    Nuv::UniString read;
    Fuzz::Check(input->ReadXMLCDATAString(read) == Nuv::Success && read == written);
    Fuzz::Check(input->ReadXML("Value", read) == Nuv::Success && read == written);
    return 0;
}
