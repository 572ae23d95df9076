#include "NuvRoot/Guid.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/Hexadecimal.hpp"
#include "NuvRoot/ResultCodes.hpp"

#include <unistd.h>

namespace Nuv
{
namespace
{

bool HasHyphenBefore(size_t byteIndex)
{
    return byteIndex == 4 || byteIndex == 6 || byteIndex == 8 || byteIndex == 10;
}

constexpr size_t TextLength = 36;

std::u16string_view WithoutBraces(std::u16string_view text)
{
    if (text.size() == TextLength + 2 && text.front() == u'{' && text.back() == u'}')
        return text.substr(1, TextLength);
    return text;
}

} // namespace

Guid Guid::Generate()
{
    Guid guid;
    if (getentropy(guid.bytes.data(), guid.bytes.size()) != 0)
        throw GeneralException(UniString(u"The system has no random numbers."), "Guid", __LINE__);
    guid.bytes[6] = static_cast<unsigned char>((guid.bytes[6] & 0x0F) | 0x40); // version 4
    guid.bytes[8] = static_cast<unsigned char>((guid.bytes[8] & 0x3F) | 0x80); // the variant of RFC 4122
    return guid;
}

int Guid::ConvertFromString(const UniString& text)
{
    const std::u16string_view digits = WithoutBraces(text.View());
    if (digits.size() != TextLength)
        return Failure;
    Guid read;
    size_t position = 0;
    for (size_t i = 0; i < read.bytes.size(); ++i)
    {
        if (HasHyphenBefore(i) && digits[position++] != u'-')
            return Failure;
        const int high = HexDigitValue(digits[position++]);
        const int low = HexDigitValue(digits[position++]);
        if (high < 0 || low < 0)
            return Failure;
        read.bytes[i] = static_cast<unsigned char>(high * 16 + low);
    }
    *this = read;
    return Success;
}

UniString Guid::ToUniString() const
{
    std::u16string text;
    text.reserve(TextLength);
    for (size_t i = 0; i < bytes.size(); ++i)
    {
        if (HasHyphenBefore(i))
            text += u'-';
        AppendHexByte(bytes[i], text);
    }
    return UniString(text);
}

} // namespace Nuv
