/// @file
/// Numbers as text, independent of the C locale: the decimal mark is a point.
///
/// `bool strtovalue(text, T& value, mode = 0, trim = 0)` reads a number in decimal notation: digits with an
/// optional sign before them, for `float` and `double` also with a decimal point and an exponent. White space
/// (the Unicode property) may stand around it. It fails, with `value` as it was, on an empty text, anything
/// after the number, two signs, a `-` before an unsigned type, a value out of range, hexadecimal notation,
/// digits of other scripts, `inf` and `nan`. A number too small for `float` or `double` is the nearest
/// representable value. It does not allocate.
///
/// `bool valuetostr(T value, UniChar* buffer, size_t bufferLength)` writes the decimal text of `value` and a
/// terminating zero; `float` and `double` as the shortest text that reads back as the same value. It gives
/// false, with the buffer untouched, where the text does not fit, and for infinities and NaN.
///
/// Both exist for every T of NUV_FOR_EACH_NUMBER_TYPE.
#pragma once

#include "NuvRoot/Export.hpp"
#include "NuvRoot/UniString.hpp"

#include <cstddef>
#include <string_view>

namespace Nuv
{

/// Which notations strtovalue accepts; 0 is decimal notation only.
using ToValueMode = int;

/// How strtovalue treats white space; 0 accepts it around the number.
using TrimWSMode = int;

// clang-format off
/// The types that have a text form.
#define NUV_FOR_EACH_NUMBER_TYPE(APPLY)                                                                      \
    APPLY(char) APPLY(signed char) APPLY(unsigned char)                                                      \
    APPLY(short) APPLY(unsigned short) APPLY(int) APPLY(unsigned int)                                        \
    APPLY(long) APPLY(unsigned long) APPLY(long long) APPLY(unsigned long long)                              \
    APPLY(float) APPLY(double)
// clang-format on

// bool strtovalue(std::u16string_view text, T& value, ToValueMode mode = 0, TrimWSMode trim = 0)
// bool valuetostr(T value, UniChar* buffer, size_t bufferLength)
#define NUV_DECLARE_VALUE_TEXT(Type)                                                                         \
    NUVROOT_API bool strtovalue(std::u16string_view text, Type& value, ToValueMode mode = 0,                 \
                                TrimWSMode trim = 0);                                                        \
    NUVROOT_API bool valuetostr(Type value, UniChar* buffer, size_t bufferLength);

NUV_FOR_EACH_NUMBER_TYPE(NUV_DECLARE_VALUE_TEXT)
#undef NUV_DECLARE_VALUE_TEXT

/// Zero-terminated text; null is the empty text.
template <class T>
bool strtovalue(const UniChar* text, T& value, ToValueMode mode = 0, TrimWSMode trim = 0)
{
    return strtovalue(text ? std::u16string_view(text) : std::u16string_view(), value, mode, trim);
}

} // namespace Nuv
