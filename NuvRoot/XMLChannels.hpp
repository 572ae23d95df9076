/// @file
/// The channels through which objects write themselves to XML and read themselves back, whatever library
/// stands behind them. All names and 8-bit texts are in the local code page.
///
/// What WriteXML writes, ReadXML reads back, and so on for CDATA sections, versions and attributes. Text
/// nodes can only be written. Floating-point numbers can only be read: an object writes the text of one. By
/// default a carriage return comes back as a line feed, except from an attribute.
///
/// Every operation that returns `int` returns Success (0) or Failure (-7003), unless it says otherwise.
#pragma once

#include "NuvRoot/ClassVersion.hpp"
#include "NuvRoot/Export.hpp"
#include "NuvRoot/Guid.hpp"
#include "NuvRoot/ResultCodes.hpp"
#include "NuvRoot/UniString.hpp"

#if !defined(__int64) && !defined(_MSC_VER)
/// The name that older code of the application uses for 64-bit integers; `unsigned __int64` works too.
#define __int64 long long // NOLINT(bugprone-reserved-identifier)
#endif

namespace IO
{
class Location;
}

namespace Nuv
{

/// What a reader stands on. The values are bits, so that a mask can name several.
enum XMLTokenType
{
    XMLStartElement = 1,
    XMLEndElement = 2,
    XMLNoToken = 128
};

/// The platform that wrote a document.
enum PlatformSign
{
    UnknownPlatform = 0,
    WindowsPlatform = 1,
    MacintoshPlatform = 2
};

/// Takes an object as a stream of element starts, values, attributes and element ends.
class NUVROOT_API XMLOChannel
{
  public:
    enum ErrorStatus
    {
        NoError = 0
    };

    virtual ~XMLOChannel();

    /// A new, empty channel of the same kind, which the caller deletes.
    virtual XMLOChannel* Create(const UniString& first, const UniString& second) = 0;

    virtual void SetXMLShemaVersion(const ClassVersion& version) = 0;
    virtual void GetXMLShemaVersion(ClassVersion& version) = 0;

    /// Gives the location that the document belongs to; false when there is none.
    virtual bool GetLocation(IO::Location& location) = 0;

    // Structure.

    virtual int WriteStartDocument() = 0;
    virtual int WriteEndDocument() = 0;
    virtual int WriteStartElement(const char* name) = 0;
    virtual int WriteEndElement() = 0;

    // Elements: a child element with the value as its text. Integers are decimal, a `char` is its signed
    // code, a `bool` is "true" or "false". The form with a length takes that many bytes of 8-bit text.

    virtual int WriteXML(const char* name, const Guid& value) = 0;
    virtual int WriteXML(const char* name, const UniString& value) = 0;
    virtual int WriteXML(const char* name, const char* text, unsigned int length);
    virtual int WriteXML(const char* name, unsigned long long value) = 0;
    virtual int WriteXML(const char* name, long long value) = 0;
    virtual int WriteXML(const char* name, unsigned long value) = 0;
    virtual int WriteXML(const char* name, long value) = 0;
    virtual int WriteXML(const char* name, unsigned int value) = 0;
    virtual int WriteXML(const char* name, int value) = 0;
    virtual int WriteXML(const char* name, unsigned short value) = 0;
    virtual int WriteXML(const char* name, short value) = 0;
    virtual int WriteXML(const char* name, bool value);
    virtual int WriteXML(const char* name, unsigned char value) = 0;
    virtual int WriteXML(const char* name, char value) = 0;

    // Text: a text node in the open element, formatted as the element forms do.

    virtual int WriteXMLTextNode(const UniString& value) = 0;
    virtual int WriteXMLTextNode(const char* text, unsigned int length);
    virtual int WriteXMLTextNode(unsigned long long value);
    virtual int WriteXMLTextNode(long long value);
    virtual int WriteXMLTextNode(unsigned long value);
    virtual int WriteXMLTextNode(long value);
    virtual int WriteXMLTextNode(unsigned int value);
    virtual int WriteXMLTextNode(int value);
    virtual int WriteXMLTextNode(unsigned short value);
    virtual int WriteXMLTextNode(short value);
    virtual int WriteXMLTextNode(bool value);
    virtual int WriteXMLTextNode(unsigned char value);
    virtual int WriteXMLTextNode(char value);

    // CDATA sections in the open element: bytes as upper-case hexadecimal digits, or text as it is.

    /// The bytes of the zero-terminated array `*bytes`, without the terminator; Failure for a null pointer.
    virtual int WriteXMLCDATABinToHex(char** bytes);

    /// Failure for a null pointer to more than no bytes.
    virtual int WriteXMLCDATABinToHex(const char* bytes, unsigned int count);
    virtual int WriteXMLCDATAString(const UniString& value) = 0;
    virtual int WriteXMLCDATAString(const char* text, unsigned int length);

    // Attributes of the open element, formatted as the element forms do.

    virtual int WriteXMLVersionAttr(const ClassVersion& version) = 0;
    virtual int WriteXMLAttr(const char* name, const Guid& value) = 0;
    virtual int WriteXMLAttr(const char* name, const UniString& value) = 0;
    virtual int WriteXMLAttr(const char* name, unsigned long long value) = 0;
    virtual int WriteXMLAttr(const char* name, long long value) = 0;
    virtual int WriteXMLAttr(const char* name, unsigned int value) = 0;
    virtual int WriteXMLAttr(const char* name, int value) = 0;
    virtual int WriteXMLAttr(const char* name, const char* text, unsigned int length);
    virtual int WriteXMLAttr(const char* name, unsigned short value) = 0;
    virtual int WriteXMLAttr(const char* name, short value) = 0;
    virtual int WriteXMLAttr(const char* name, bool value);
    virtual int WriteXMLAttr(const char* name, unsigned char value) = 0;
    virtual int WriteXMLAttr(const char* name, char value) = 0;

    // Messages: diagnostics that travel with the channel to whoever disposes of it.

    virtual void AddMessage(const UniString& text) = 0;
    virtual int GetNumberOfMessage() = 0;

    /// Leaves `text` and `line` as they are when there is no message `index`.
    virtual void GetMessage(int index, UniString& text, int& line) = 0;

    // Errors.

    virtual ErrorStatus GetErrorStatus() = 0;
    virtual void ClearErrorStatus() = 0;

    // Forms that are not virtual: `long` attributes, and text literals, which would become a `bool`.

    int WriteXMLAttr(const char* name, unsigned long value)
    {
        return WriteXMLAttr(name, static_cast<unsigned long long>(value));
    }
    int WriteXMLAttr(const char* name, long value)
    {
        return WriteXMLAttr(name, static_cast<long long>(value));
    }

    int WriteXML(const char* name, const char* text) = delete;
    int WriteXML(const char* name, const UniChar* text) = delete;
    int WriteXMLTextNode(const char* text) = delete;
    int WriteXMLTextNode(const UniChar* text) = delete;
    int WriteXMLAttr(const char* name, const char* text) = delete;
    int WriteXMLAttr(const char* name, const UniChar* text) = delete;

  protected:
    int channelMode = 0;
    int channelPrecision = 15;
};

/// Gives an object back from what an XMLOChannel took. An element that is not found leaves the reader where
/// it was; one whose text has the wrong form has been passed over.
class NUVROOT_API XMLIChannel
{
  public:
    enum ErrorStatus
    {
        NoError = 0,
        NothingToRead = 3 ///< an operation was attempted without anything to read from
    };

    // Errors.

    virtual ErrorStatus GetErrorStatus() = 0;
    virtual void ClearErrorStatus() = 0;

    virtual ~XMLIChannel();

    /// A new, empty channel of the same kind, which the caller deletes.
    virtual XMLIChannel* Create(const UniString& first, const UniString& second) = 0;

    virtual void SetXMLShemaVersion(const ClassVersion& version) = 0;
    virtual void GetXMLShemaVersion(ClassVersion& version) = 0;

    /// Gives the location that the document was read from; false when there is none.
    virtual bool GetLocation(IO::Location& location) = 0;

    // Tokens.

    virtual XMLTokenType GetTokenType() = 0;
    virtual XMLTokenType GetNextTokenType() = 0;
    virtual XMLTokenType GetTokenTypeName(UniString& name) = 0;
    virtual XMLTokenType GetNextTokenTypeName(UniString& name) = 0;

    // Structure.

    /// A null name stands for any element.
    virtual int ReadStartElement(const char* name) = 0;

    /// Fails for a null name.
    virtual int ReadEndElement(const char* name) = 0;

    /// Moves on to the next token whose bit is set in `mask`, or by one token when `mask` is 0.
    virtual int ReadToken(unsigned int mask) = 0;

    // Elements: the text of a child element as a value.

    virtual int ReadXML(const char* name, Guid& value) = 0;
    virtual int ReadXML(const char* name, UniString& value) = 0;
    virtual int ReadXML(const char* name, char* buffer, unsigned int size) = 0;
    virtual int ReadXML(const char* name, double& value) = 0;
    virtual int ReadXML(const char* name, float& value) = 0;
    virtual int ReadXML(const char* name, unsigned long long& value) = 0;
    virtual int ReadXML(const char* name, long long& value) = 0;
    virtual int ReadXML(const char* name, unsigned long& value) = 0;
    virtual int ReadXML(const char* name, long& value) = 0;
    virtual int ReadXML(const char* name, unsigned int& value) = 0;
    virtual int ReadXML(const char* name, int& value) = 0;
    virtual int ReadXML(const char* name, unsigned short& value) = 0;
    virtual int ReadXML(const char* name, short& value) = 0;
    virtual int ReadXML(const char* name, bool& value) = 0;
    virtual int ReadXML(const char* name, char& value) = 0;
    virtual int ReadXML(const char* name, unsigned char& value) = 0;

    // CDATA sections of the open element: bytes from hexadecimal digits in either case, or text as it is.

    /// Gives a new zero-terminated array, which the caller frees with `delete[]`; untouched on failure.
    virtual int ReadXMLCDATAHexToBin(char** bytes);

    /// Fills `buffer` with exactly `size` bytes: those read, then zeros. More than `size` bytes are a
    /// failure, which leaves `buffer` untouched.
    virtual int ReadXMLCDATAHexToBin(char* buffer, unsigned int size);

    virtual int ReadXMLCDATAString(UniString& value) = 0;

    /// The same with the 8-bit form of the text.
    virtual int ReadXMLCDATAString(char* buffer, unsigned int size);

    // Attributes of the open element.

    virtual int ReadXMLVersionAttr(ClassVersion& version) = 0;
    virtual int ReadXMLAttr(const char* name, Guid& value) = 0;
    virtual int ReadXMLAttr(const char* name, UniString& value) = 0;
    virtual int ReadXMLAttr(const char* name, unsigned long long& value) = 0;
    virtual int ReadXMLAttr(const char* name, long long& value) = 0;
    virtual int ReadXMLAttr(const char* name, unsigned int& value) = 0;
    virtual int ReadXMLAttr(const char* name, int& value) = 0;
    virtual int ReadXMLAttr(const char* name, char* buffer, unsigned int size) = 0;
    virtual int ReadXMLAttr(const char* name, double& value) = 0;
    virtual int ReadXMLAttr(const char* name, float& value) = 0;
    virtual int ReadXMLAttr(const char* name, unsigned short& value) = 0;
    virtual int ReadXMLAttr(const char* name, short& value) = 0;
    virtual int ReadXMLAttr(const char* name, bool& value) = 0;
    virtual int ReadXMLAttr(const char* name, char& value) = 0;
    virtual int ReadXMLAttr(const char* name, unsigned char& value) = 0;

    // Platform.

    virtual PlatformSign GetChannelPlatform() = 0;
    virtual void SetChannelPlatform(PlatformSign platform) = 0;

    // Messages: what went wrong while reading, and what the objects have to say.

    virtual void AddMessage(const UniString& text) = 0;
    virtual int GetNumberOfMessage() = 0;

    /// Leaves `text` and `code` as they are when there is no message `index`.
    virtual void GetMessage(int index, UniString& text, int& code) = 0;

    // Forms that are not virtual: `long` attributes.

    int ReadXMLAttr(const char* name, unsigned long& value)
    {
        return ReadAttrThrough<unsigned long long>(name, value);
    }
    int ReadXMLAttr(const char* name, long& value) { return ReadAttrThrough<long long>(name, value); }

  private:
    template <class Wide, class Integer>
    int ReadAttrThrough(const char* name, Integer& value)
    {
        static_assert(sizeof(Integer) == sizeof(Wide), "every value fits");
        Wide wide = 0;
        const int status = ReadXMLAttr(name, wide);
        if (status == Success)
            value = static_cast<Integer>(wide);
        return status;
    }
};

} // namespace Nuv
