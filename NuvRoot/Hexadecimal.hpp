/// @file
/// Bytes as pairs of hexadecimal digits. Private to NuvRoot.
#pragma once

#include "NuvRoot/UniString.hpp"

#include <string>

namespace Nuv
{

/// The value of a hexadecimal digit in either case, -1 for any other unit.
inline int HexDigitValue(UniChar unit)
{
    if (unit >= u'0' && unit <= u'9')
        return unit - u'0';
    if (unit >= u'A' && unit <= u'F')
        return unit - u'A' + 10;
    if (unit >= u'a' && unit <= u'f')
        return unit - u'a' + 10;
    return -1;
}

/// Appends the byte as two upper-case digits.
inline void AppendHexByte(unsigned char byte, std::u16string& text)
{
    static constexpr UniChar Digits[] = u"0123456789ABCDEF";
    text += Digits[byte >> 4];
    text += Digits[byte & 0xF];
}

} // namespace Nuv
