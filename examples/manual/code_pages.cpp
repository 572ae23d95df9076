// The same bytes in two local code pages, text that a code page lacks, and 8-bit text through a channel.

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/UniString.hpp"
#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <iostream>
#include <string_view>

namespace
{

/// Eight-bit text is taken to be in the local code page.
void WriteThroughAChannel(std::string_view bytes)
{
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(true);
    const NuvXML::XMLOChannelGuard guard(&channel);
    channel->WriteStartElement("Offer");
    channel->WriteXML("Price", bytes.data(), static_cast<unsigned int>(bytes.size()));
    channel->WriteEndElement();
    channel->WriteEndDocument();
    std::cout << NuvXML::ExportOChannelToUniString(channel);
}

} // namespace

int main()
{
    const char bytes[] = "12 \x80"; // a euro sign in windows-1252

    Nuv::SetLocalCodePage("windows-1252");
    std::cout << Nuv::GetLocalCodePage() << ": " << Nuv::UniString(bytes) << '\n';
    WriteThroughAChannel(bytes);

    Nuv::SetLocalCodePage("UTF-8");
    std::cout << Nuv::GetLocalCodePage() << ": " << Nuv::UniString(bytes) << '\n'; // no UTF-8
    std::cout << "whatever the local code page is: " << Nuv::UniString("12 €", Nuv::CC_UTF8) << '\n';

    Nuv::SetLocalCodePage("ISO-8859-1");
    const Nuv::UniString price(u"£12 or €14");
    std::cout << "lossy: " << Nuv::UniString(price.ToString()) << '\n';
    char buffer[32] = {};
    const bool isLossy = false;
    std::cout << "strict: " << CHUnicode2ANSI(price.ToUTF16(), -1, buffer, 32, Nuv::CC_Default, isLossy)
              << " bytes\n";
    try
    {
        Nuv::SetLocalCodePage("klingon");
    }
    catch (const Nuv::GeneralException& exception)
    {
        std::cout << exception.GetMessage() << "; it is still " << Nuv::GetLocalCodePage() << '\n';
    }
}
