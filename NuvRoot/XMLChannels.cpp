#include "NuvRoot/XMLChannels.hpp"

#include "NuvRoot/Hexadecimal.hpp"
#include "NuvRoot/ValueText.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

namespace Nuv
{
namespace
{

template <class Integer>
UniString TextOf(Integer value)
{
    UniChar digits[32];
    valuetostr(value, digits, std::size(digits));
    return UniString(digits);
}

UniString TextOf(bool value) { return UniString(value ? u"true" : u"false"); }

/// `length` bytes of 8-bit text.
UniString TextOf(const char* text, unsigned int length)
{
    return text ? UniString(String(text, length)) : UniString();
}

UniString HexTextOf(const char* bytes, size_t count)
{
    std::u16string text;
    text.reserve(count * 2);
    for (size_t i = 0; i < count; ++i)
        AppendHexByte(static_cast<unsigned char>(bytes[i]), text);
    return UniString(text);
}

std::optional<std::string> BytesOf(const UniString& hexText)
{
    const size_t length = hexText.GetLength();
    if (length % 2 != 0)
        return std::nullopt;
    std::string bytes;
    bytes.reserve(length / 2);
    for (size_t i = 0; i < length; i += 2)
    {
        const int high = HexDigitValue(hexText[i]);
        const int low = HexDigitValue(hexText[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

int FillBuffer(const std::string& bytes, char* buffer, unsigned int size)
{
    if (bytes.size() > size)
        return Failure;
    std::fill(std::copy(bytes.begin(), bytes.end(), buffer), buffer + size, '\0');
    return Success;
}

} // namespace

XMLOChannel::~XMLOChannel() = default;

int XMLOChannel::WriteXML(const char* name, const char* text, unsigned int length)
{
    return WriteXML(name, TextOf(text, length));
}

int XMLOChannel::WriteXML(const char* name, bool value) { return WriteXML(name, TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(const char* text, unsigned int length)
{
    return WriteXMLTextNode(TextOf(text, length));
}

int XMLOChannel::WriteXMLTextNode(unsigned long long value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(long long value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(unsigned long value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(long value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(unsigned int value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(int value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(unsigned short value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(short value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(bool value) { return WriteXMLTextNode(TextOf(value)); }

int XMLOChannel::WriteXMLTextNode(unsigned char value)
{
    return WriteXMLTextNode(TextOf(static_cast<unsigned int>(value)));
}

int XMLOChannel::WriteXMLTextNode(char value)
{
    return WriteXMLTextNode(TextOf(static_cast<int>(static_cast<signed char>(value))));
}

int XMLOChannel::WriteXMLCDATABinToHex(char** bytes)
{
    if (!bytes || !*bytes)
        return Failure;
    return WriteXMLCDATAString(HexTextOf(*bytes, std::strlen(*bytes)));
}

int XMLOChannel::WriteXMLCDATABinToHex(const char* bytes, unsigned int count)
{
    if (!bytes && count != 0)
        return Failure;
    return WriteXMLCDATAString(HexTextOf(bytes, count));
}

int XMLOChannel::WriteXMLCDATAString(const char* text, unsigned int length)
{
    return WriteXMLCDATAString(TextOf(text, length));
}

int XMLOChannel::WriteXMLAttr(const char* name, const char* text, unsigned int length)
{
    return WriteXMLAttr(name, TextOf(text, length));
}

int XMLOChannel::WriteXMLAttr(const char* name, bool value) { return WriteXMLAttr(name, TextOf(value)); }

XMLIChannel::~XMLIChannel() = default;

int XMLIChannel::ReadXMLCDATAHexToBin(char** bytes)
{
    UniString text;
    if (const int status = ReadXMLCDATAString(text); status != Success)
        return status;
    const std::optional<std::string> read = BytesOf(text);
    if (!read)
        return Failure;
    auto result = std::make_unique<char[]>(read->size() + 1);
    std::copy(read->begin(), read->end(), result.get());
    *bytes = result.release();
    return Success;
}

int XMLIChannel::ReadXMLCDATAHexToBin(char* buffer, unsigned int size)
{
    UniString text;
    if (const int status = ReadXMLCDATAString(text); status != Success)
        return status;
    const std::optional<std::string> read = BytesOf(text);
    return read ? FillBuffer(*read, buffer, size) : Failure;
}

int XMLIChannel::ReadXMLCDATAString(char* buffer, unsigned int size)
{
    UniString text;
    if (const int status = ReadXMLCDATAString(text); status != Success)
        return status;
    return FillBuffer(text.ToString(), buffer, size);
}

} // namespace Nuv
