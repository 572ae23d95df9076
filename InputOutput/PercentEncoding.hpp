/// @file
/// Percent-encoding of names in URLs (RFC 3986, section 2.1).
#pragma once

#include <string>
#include <string_view>

namespace IO
{

/// Returns `text` with `%` and two upper-case digits in place of every byte that `isKept` refuses.
template <class Predicate>
std::string PercentEncode(std::string_view text, Predicate isKept)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : text)
    {
        const auto value = static_cast<unsigned char>(byte);
        if (isKept(value))
        {
            encoded += byte;
            continue;
        }
        encoded += '%';
        encoded += Digits[value >> 4];
        encoded += Digits[value & 0xF];
    }
    return encoded;
}

/// Returns the bytes that `text` encodes. A `%` without two hexadecimal digits after it remains a `%`. So
/// does that of `%00`, because a zero byte would end the name for the operating system.
std::string PercentDecode(std::string_view text);

} // namespace IO
