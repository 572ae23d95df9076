#include "NuvXMLUtils/ChannelFormatTargets.hpp"

namespace NuvXML
{
namespace
{

template <class Channel>
void WriteUntilError(Channel& channel, const XMLByte* bytes, XMLSize_t count, int& errorCode)
{
    if (errorCode == 0)
        errorCode = channel.Write(bytes, count);
}

} // namespace

OChannelXMLFormatTarget::OChannelXMLFormatTarget(Nuv::OChannel& target)
    : channel(target)
{
}

OChannelXMLFormatTarget::~OChannelXMLFormatTarget() = default;

void OChannelXMLFormatTarget::writeChars(const XMLByte* toWrite, XMLSize_t count, xercesc_3_0::XMLFormatter*)
{
    WriteUntilError(channel, toWrite, count, errorCode);
}

OBinaryChannelXMLFormatTarget::OBinaryChannelXMLFormatTarget(Nuv::OBinaryChannel& target)
    : channel(target)
{
}

OBinaryChannelXMLFormatTarget::~OBinaryChannelXMLFormatTarget() = default;

void OBinaryChannelXMLFormatTarget::writeChars(const XMLByte* toWrite, XMLSize_t count,
                                               xercesc_3_0::XMLFormatter*)
{
    WriteUntilError(channel, toWrite, count, errorCode);
}

} // namespace NuvXML
