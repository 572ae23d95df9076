/// @file
/// The least channels that there can be: they implement the pure operations and nothing else, so that what
/// the bases add can be seen.
#pragma once

#include "NuvRoot/XMLChannels.hpp"

#include <sstream>
#include <string>

/// Remembers the last call of a pure operation as text.
class RecordingOChannel : public Nuv::XMLOChannel
{
  public:
    using UniString = Nuv::UniString;

    /// What every writing operation returns.
    int status = 0;

    /// What was written last, for example `element name: int 5`; empty when nothing was.
    std::string written;

    int ChannelMode() const { return channelMode; }
    int ChannelPrecision() const { return channelPrecision; }

    RecordingOChannel* Create(const UniString&, const UniString&) override { return new RecordingOChannel; }
    void SetXMLShemaVersion(const Nuv::ClassVersion&) override {}
    void GetXMLShemaVersion(Nuv::ClassVersion&) override {}
    bool GetLocation(IO::Location&) override { return false; }
    int WriteStartDocument() override { return status; }
    int WriteEndDocument() override { return status; }
    int WriteStartElement(const char*) override { return status; }
    int WriteEndElement() override { return status; }

    int WriteXML(const char* name, const Nuv::Guid& value) override
    {
        return Element(name, "Guid", value.ToUniString());
    }
    int WriteXML(const char* name, const UniString& value) override
    {
        return Element(name, "UniString", value);
    }
    int WriteXML(const char* name, unsigned long long value) override { return Element(name, "u64", value); }
    int WriteXML(const char* name, long long value) override { return Element(name, "i64", value); }
    int WriteXML(const char* name, unsigned long value) override
    {
        return Element(name, "unsigned long", value);
    }
    int WriteXML(const char* name, long value) override { return Element(name, "long", value); }
    int WriteXML(const char* name, unsigned int value) override { return Element(name, "unsigned", value); }
    int WriteXML(const char* name, int value) override { return Element(name, "int", value); }
    int WriteXML(const char* name, unsigned short value) override
    {
        return Element(name, "unsigned short", value);
    }
    int WriteXML(const char* name, short value) override { return Element(name, "short", value); }
    int WriteXML(const char* name, unsigned char value) override
    {
        return Element(name, "unsigned char", +value);
    }
    int WriteXML(const char* name, char value) override { return Element(name, "char", +value); }

    int WriteXMLTextNode(const UniString& value) override { return Record("text", "", "UniString", value); }
    int WriteXMLCDATAString(const UniString& value) override
    {
        return Record("CDATA", "", "UniString", value);
    }

    int WriteXMLVersionAttr(const Nuv::ClassVersion&) override { return status; }
    int WriteXMLAttr(const char* name, const Nuv::Guid& value) override
    {
        return Attr(name, "Guid", value.ToUniString());
    }
    int WriteXMLAttr(const char* name, const UniString& value) override
    {
        return Attr(name, "UniString", value);
    }
    int WriteXMLAttr(const char* name, unsigned long long value) override { return Attr(name, "u64", value); }
    int WriteXMLAttr(const char* name, long long value) override { return Attr(name, "i64", value); }
    int WriteXMLAttr(const char* name, unsigned int value) override { return Attr(name, "unsigned", value); }
    int WriteXMLAttr(const char* name, int value) override { return Attr(name, "int", value); }
    int WriteXMLAttr(const char* name, unsigned short value) override
    {
        return Attr(name, "unsigned short", value);
    }
    int WriteXMLAttr(const char* name, short value) override { return Attr(name, "short", value); }
    int WriteXMLAttr(const char* name, unsigned char value) override
    {
        return Attr(name, "unsigned char", +value);
    }
    int WriteXMLAttr(const char* name, char value) override { return Attr(name, "char", +value); }

    void AddMessage(const UniString&) override {}
    int GetNumberOfMessage() override { return 0; }
    void GetMessage(int, UniString&, int&) override {}
    ErrorStatus GetErrorStatus() override { return NoError; }
    void ClearErrorStatus() override {}

  private:
    template <class Value>
    int Element(const char* name, const char* type, const Value& value)
    {
        return Record("element ", name, type, value);
    }
    template <class Value>
    int Attr(const char* name, const char* type, const Value& value)
    {
        return Record("attribute ", name, type, value);
    }
    template <class Value>
    int Record(const char* kind, const char* name, const char* type, const Value& value)
    {
        std::ostringstream text;
        text << kind << name << ": " << type << ' ' << value;
        written = text.str();
        return status;
    }
};

/// Gives the same CDATA section and the same integer attribute to whoever reads one.
class PlayingIChannel : public Nuv::XMLIChannel
{
  public:
    using UniString = Nuv::UniString;

    /// What every reading operation returns; a failing one gives nothing.
    int status = 0;

    UniString cdata;
    unsigned long long unsignedAttribute = 0;
    long long signedAttribute = 0;

    ErrorStatus GetErrorStatus() override { return NoError; }
    void ClearErrorStatus() override {}
    PlayingIChannel* Create(const UniString&, const UniString&) override { return new PlayingIChannel; }
    void SetXMLShemaVersion(const Nuv::ClassVersion&) override {}
    void GetXMLShemaVersion(Nuv::ClassVersion&) override {}
    bool GetLocation(IO::Location&) override { return false; }
    Nuv::XMLTokenType GetTokenType() override { return Nuv::XMLNoToken; }
    Nuv::XMLTokenType GetNextTokenType() override { return Nuv::XMLNoToken; }
    Nuv::XMLTokenType GetTokenTypeName(UniString&) override { return Nuv::XMLNoToken; }
    Nuv::XMLTokenType GetNextTokenTypeName(UniString&) override { return Nuv::XMLNoToken; }
    int ReadStartElement(const char*) override { return status; }
    int ReadEndElement(const char*) override { return status; }
    int ReadToken(unsigned int) override { return status; }

    int ReadXML(const char*, Nuv::Guid&) override { return status; }
    int ReadXML(const char*, UniString&) override { return status; }
    int ReadXML(const char*, char*, unsigned int) override { return status; }
    int ReadXML(const char*, double&) override { return status; }
    int ReadXML(const char*, float&) override { return status; }
    int ReadXML(const char*, unsigned long long&) override { return status; }
    int ReadXML(const char*, long long&) override { return status; }
    int ReadXML(const char*, unsigned long&) override { return status; }
    int ReadXML(const char*, long&) override { return status; }
    int ReadXML(const char*, unsigned int&) override { return status; }
    int ReadXML(const char*, int&) override { return status; }
    int ReadXML(const char*, unsigned short&) override { return status; }
    int ReadXML(const char*, short&) override { return status; }
    int ReadXML(const char*, bool&) override { return status; }
    int ReadXML(const char*, char&) override { return status; }
    int ReadXML(const char*, unsigned char&) override { return status; }

    int ReadXMLCDATAString(UniString& value) override { return Give(cdata, value); }

    int ReadXMLVersionAttr(Nuv::ClassVersion&) override { return status; }
    int ReadXMLAttr(const char*, Nuv::Guid&) override { return status; }
    int ReadXMLAttr(const char*, UniString&) override { return status; }
    int ReadXMLAttr(const char*, unsigned long long& value) override
    {
        return Give(unsignedAttribute, value);
    }
    int ReadXMLAttr(const char*, long long& value) override { return Give(signedAttribute, value); }
    int ReadXMLAttr(const char*, unsigned int&) override { return status; }
    int ReadXMLAttr(const char*, int&) override { return status; }
    int ReadXMLAttr(const char*, char*, unsigned int) override { return status; }
    int ReadXMLAttr(const char*, double&) override { return status; }
    int ReadXMLAttr(const char*, float&) override { return status; }
    int ReadXMLAttr(const char*, unsigned short&) override { return status; }
    int ReadXMLAttr(const char*, short&) override { return status; }
    int ReadXMLAttr(const char*, bool&) override { return status; }
    int ReadXMLAttr(const char*, char&) override { return status; }
    int ReadXMLAttr(const char*, unsigned char&) override { return status; }

    Nuv::PlatformSign GetChannelPlatform() override { return Nuv::UnknownPlatform; }
    void SetChannelPlatform(Nuv::PlatformSign) override {}
    void AddMessage(const UniString&) override {}
    int GetNumberOfMessage() override { return 0; }
    void GetMessage(int, UniString&, int&) override {}

  private:
    template <class Value>
    int Give(const Value& given, Value& value)
    {
        if (status == 0)
            value = given;
        return status;
    }
};
