// Writes a value and reads it back, in memory and through a file. The message of the channel shows whose
// folder for temporary files is asked for, and the file before the last who replaces files.

#include "InputOutput/File.hpp"
#include "InputOutput/FileSystem.hpp"
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

bool Save(const IO::Location& location, int height)
{
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(location, true);
    const NuvXML::XMLOChannelGuard guard(&channel);
    channel->WriteStartElement("Wall");
    channel->WriteXML("Height", height);
    channel->WriteEndElement();
    return NuvXML::SaveXMLOChannel(channel, nullptr);
}

/// The height in a file, which is deleted.
int Take(const IO::Location& location)
{
    int height = 0;
    {
        Nuv::XMLIChannel* channel = NuvXML::CreateXMLIChannel(location, true);
        const NuvXML::XMLIChannelGuard guard(&channel);
        channel->ReadXML("Height", height);
    }
    IO::FileSystem::Delete(location, IO::DeleteForGood, IO::ReportAccessDenied);
    return height;
}

/// Two files, of which the application keeps both.
bool IsSavedTwice()
{
    const IO::Location location(u"./Saved.xml");
    return Save(location, 275) && Save(location, 300) && Take(location) == 300 &&
           Take(IO::Location(u"./Saved.xml~")) == 275;
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
    return height == 275 && message.starts_with("./Scratch_") && IsSavedTwice() && IsCaught() ? 0 : 1;
}
