// Writes a value through the installed library and reads it back.

#include <NuvXMLUtils/NuvXMLInterface.hpp>

#include <cstdio>

int main()
{
    Nuv::XMLOChannel* output = NuvXML::CreateXMLOChannel(true);
    const NuvXML::XMLOChannelGuard outputGuard(&output);
    output->WriteStartElement("Wall");
    output->WriteXML("Height", 275);
    output->WriteEndElement();
    const Nuv::UniString text = NuvXML::ExportOChannelToUniString(output);

    Nuv::XMLIChannel* input = NuvXML::CreateXMLIChannelFromMemory(text, true);
    const NuvXML::XMLIChannelGuard inputGuard(&input);
    int height = 0;
    const int status = input->ReadXML("Height", height);
    std::printf("status %d, height %d\n", status, height);

    try
    {
        NuvXML::CreateXMLIChannelFromMemory(Nuv::UniString(u"<Wall>"), true);
        return 1;
    }
    catch (const NuvXML::XMLIOChannelException& exception)
    {
        std::printf("%s\n", exception.GetMessage().ToUTF8().c_str());
    }
    return status == 0 && height == 275 ? 0 : 1;
}
