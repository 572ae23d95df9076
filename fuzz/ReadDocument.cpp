// Any bytes as a document: it loads or is refused, and what has been loaded can be read to its end.

#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    Nuv::XMLIChannel* channel =
        NuvXML::CreateXMLIChannelFromMemory(bytes, static_cast<unsigned int>(size), false);
    const NuvXML::XMLIChannelGuard guard(&channel);
    Nuv::UniString text;
    double number = 0;
    while (channel && channel->ReadToken(0) == Nuv::Success)
    {
        channel->ReadXMLCDATAString(text);
        channel->ReadXMLAttr("a", number);
        channel->GetNextTokenTypeName(text);
    }
    return 0;
}
