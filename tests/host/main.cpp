// Writes a value and reads it back; the message of the channel shows whose folder for temporary files is
// asked for.

#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <cstdio>

namespace
{

Nuv::UniString Write(Nuv::Array<Nuv::UniString>& messages)
{
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(true);
    const NuvXML::XMLOChannelGuard guard(&channel, &messages);
    channel->WriteStartElement("Wall");
    channel->WriteXML("Height", 275);
    channel->WriteEndElement();
    channel->AddMessage(u"written");
    return NuvXML::ExportOChannelToUniString(channel);
}

int Read(const Nuv::UniString& text)
{
    Nuv::XMLIChannel* channel = NuvXML::CreateXMLIChannelFromMemory(text, true);
    const NuvXML::XMLIChannelGuard guard(&channel);
    int height = 0;
    channel->ReadXML("Height", height);
    return height;
}

/// An exception of the library is one of the application's.
bool IsCaught()
try
{
    NuvXML::CreateXMLIChannelFromMemory(u"<Wall>", true);
    return false;
}
catch (const Nuv::NuvException& exception)
{
    return exception.GetMessage() == u"NuvXML DOMReaderException";
}

} // namespace

int main()
{
    Nuv::Array<Nuv::UniString> messages;
    const int height = Read(Write(messages));
    const std::string message = messages.front().ToUTF8();
    std::printf("height %d, %s", height, message.c_str());
    return height == 275 && message.starts_with("./Scratch_") && IsCaught() ? 0 : 1;
}
