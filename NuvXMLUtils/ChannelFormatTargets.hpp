/// @file
/// The application's channels as targets of Xerces' formatters and serializers.
#pragma once

#include "NuvRoot/Channels.hpp"
#include "NuvXMLUtils/Export.hpp"
#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/framework/XMLFormatter.hpp>

namespace NuvXML
{

/// Writes each block of formatted bytes to a channel at once. After an error of the channel, later output is
/// dropped. The channel must outlive the target. Its exceptions pass through.
class NUVXMLUTILS_API OChannelXMLFormatTarget : public xercesc_3_0::XMLFormatTarget
{
  public:
    explicit OChannelXMLFormatTarget(Nuv::OChannel& target);
    OChannelXMLFormatTarget(const OChannelXMLFormatTarget&) = delete;
    OChannelXMLFormatTarget& operator=(const OChannelXMLFormatTarget&) = delete;
    ~OChannelXMLFormatTarget() override;

    void writeChars(const XMLByte* toWrite, XMLSize_t count, xercesc_3_0::XMLFormatter* formatter) override;

    /// The first error code that the channel returned; 0 when there was none.
    int GetErrorCode() const { return errorCode; }

  private:
    Nuv::OChannel& channel;
    int errorCode = 0;
};

/// OChannelXMLFormatTarget for a binary channel.
class NUVXMLUTILS_API OBinaryChannelXMLFormatTarget : public xercesc_3_0::XMLFormatTarget
{
  public:
    explicit OBinaryChannelXMLFormatTarget(Nuv::OBinaryChannel& target);
    OBinaryChannelXMLFormatTarget(const OBinaryChannelXMLFormatTarget&) = delete;
    OBinaryChannelXMLFormatTarget& operator=(const OBinaryChannelXMLFormatTarget&) = delete;
    ~OBinaryChannelXMLFormatTarget() override;

    void writeChars(const XMLByte* toWrite, XMLSize_t count, xercesc_3_0::XMLFormatter* formatter) override;

    /// The first error code that the channel returned; 0 when there was none.
    int GetErrorCode() const { return errorCode; }

  private:
    Nuv::OBinaryChannel& channel;
    int errorCode = 0;
};

} // namespace NuvXML
