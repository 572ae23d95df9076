// README: begin
#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <iostream>

struct Wall
{
    Nuv::UniString name;
    int height = 0;

    void Write(Nuv::XMLOChannel& channel) const
    {
        channel.WriteStartElement("Wall");
        channel.WriteXML("Name", name);
        channel.WriteXML("Height", height);
        channel.WriteEndElement();
    }

    bool Read(Nuv::XMLIChannel& channel)
    {
        return channel.ReadXML("Height", height) == Nuv::Success && // in any order
               channel.ReadXML("Name", name) == Nuv::Success;
    }
};

int main()
{
    Nuv::XMLOChannel* output = NuvXML::CreateXMLOChannel(true);
    const NuvXML::XMLOChannelGuard outputGuard(&output);
    Wall{u"North", 275}.Write(*output);
    const Nuv::UniString text = NuvXML::ExportOChannelToUniString(output);
    std::cout << text << '\n';

    Nuv::XMLIChannel* input = NuvXML::CreateXMLIChannelFromMemory(text, true);
    const NuvXML::XMLIChannelGuard inputGuard(&input);
    Wall wall;
    return wall.Read(*input) && wall.height == 275 ? 0 : 1;
}
// README: end
