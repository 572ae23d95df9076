// A wall that tells its class version, has an optional note, and is read from a document of today, from an
// older one and from three that are wrong.

#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <iostream>
#include <optional>

namespace
{

struct Wall
{
    static constexpr Nuv::ClassVersion Version{2, 0, 0};

    Nuv::UniString name;
    int height = 0;
    std::optional<Nuv::UniString> note; // since version 2

    void Write(Nuv::XMLOChannel& channel) const
    {
        channel.WriteStartElement("Wall");
        channel.WriteXMLVersionAttr(Version);
        channel.WriteXML("Name", name);
        channel.WriteXML("Height", height);
        if (note)
        {
            channel.WriteStartElement("Note");
            channel.WriteXMLCDATAString(*note);
            channel.WriteEndElement();
        }
        channel.WriteEndElement();
    }

    /// The channel stands on the start of the wall's element.
    bool Read(Nuv::XMLIChannel& channel)
    {
        Nuv::ClassVersion written;
        if (channel.ReadXMLVersionAttr(written) != Nuv::Success)
            return false;
        if (written.majorNumber > Version.majorNumber)
        {
            channel.AddMessage(u"The wall was written by a newer program.");
            return false;
        }
        if (channel.ReadXML("Name", name) != Nuv::Success ||
            channel.ReadXML("Height", height) != Nuv::Success)
            return false;
        if (channel.ReadStartElement("Note") == Nuv::Success) // missing in older documents
        {
            channel.ReadXMLCDATAString(note.emplace());
            channel.ReadEndElement("Note");
        }
        return true;
    }
};

Nuv::UniString TextOf(const Wall& wall)
{
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(true);
    const NuvXML::XMLOChannelGuard guard(&channel);
    channel->WriteStartDocument();
    wall.Write(*channel);
    channel->WriteEndDocument();
    return NuvXML::ExportOChannelToUniString(channel);
}

void ReadAndShow(const Nuv::UniString& text)
try
{
    Wall wall;
    bool isRead = false;
    Nuv::Array<Nuv::UniString> messages;
    {
        Nuv::XMLIChannel* channel = NuvXML::CreateXMLIChannelFromMemory(text, true);
        const NuvXML::XMLIChannelGuard guard(&channel, &messages);
        isRead = wall.Read(*channel);
    } // the guard ends the channel and hands its messages over
    if (isRead)
        std::cout << "Read: " << wall.name << ", " << wall.height << ", "
                  << wall.note.value_or(u"without a note") << '\n';
    for (const Nuv::UniString& message : messages)
        std::cout << "Message: " << message;
}
catch (const NuvXML::XMLIChannelException& exception)
{
    std::cout << exception.GetName() << ": " << exception.GetMessage() << '\n';
}

} // namespace

int main()
{
    const Nuv::UniString today = TextOf({u"North", 275, u"<b>Check</b> on site"});
    std::cout << today << '\n';
    ReadAndShow(today);
    ReadAndShow(u"<Wall Mv='1' Sv='7'><Height> 240 </Height><Colour/><Name>Old</Name></Wall>");
    ReadAndShow(u"<Wall Mv='2' Sv='0'><Name>South</Name><Height>high</Height></Wall>");
    ReadAndShow(u"<Wall Mv='3' Sv='0'/>");
    ReadAndShow(u"<Wall>");
}
