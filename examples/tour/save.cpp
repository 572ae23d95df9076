#include "NuvXMLUtils/NuvXMLInterface.hpp"

#include <iostream>

namespace
{

struct Wall
{
    int height = 0;

    void Write(Nuv::XMLOChannel& channel) const
    {
        channel.WriteStartElement("Wall");
        channel.WriteXML("Height", height);
        channel.WriteEndElement();
    }
};

} // namespace

// README: begin
bool Save(const Wall& wall, const IO::Location& file)
{
    Nuv::XMLOChannel* channel = NuvXML::CreateXMLOChannel(file, true);
    const NuvXML::XMLOChannelGuard guard(&channel);
    try
    {
        wall.Write(*channel);
    }
    catch (...)
    {
        NuvXML::DiscardXMLOChannel(channel); // not half a wall in place of the old file
        throw;
    }
    Nuv::UniString reason;
    const bool isSaved = NuvXML::SaveXMLOChannel(channel, &reason);
    if (!isSaved)
        std::cout << reason << '\n';
    return isSaved;
}

int main()
{
    // Writing XML file failed: no such folder/wall.xml: there is no such folder
    return Save({275}, IO::Location(u"no such folder/wall.xml")) ? 1 : 0;
}
// README: end
