/// @file
/// Percent-encoding of names in URLs (RFC 3986, section 2.1). Private to InputOutput.
#pragma once

#include "NuvRoot/UniString.hpp"

#include <string>
#include <string_view>

namespace IO
{

/// `text` as UTF-8, with `%` and two upper-case digits for every byte that `isKept` refuses.
template <class Predicate>
std::string PercentEncode(const Nuv::UniString& text, Predicate isKept)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : text.ToUTF8())
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

/// The bytes that `text` stands for; a `%` without two hexadecimal digits behind it stands for itself.
std::string PercentDecode(std::string_view text);

} // namespace IO
