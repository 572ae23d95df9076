/// @file
/// Conversion between code pages and UTF-16, below UniString and the converters.
#pragma once

#include "NuvRoot/UniString.hpp"

#include <string>
#include <string_view>

namespace Nuv::CodePages
{

enum class OnLoss
{
    Replace, ///< one replacement for each character that the code page lacks
    Fail     ///< nothing may be lost
};

/// Whether `text` is ASCII and the code page holds ASCII as it is, so that each byte is one unit of the same
/// value and the conversion needs no converter: opening one takes ten times as long as a short text.
bool IsPlainASCII(std::string_view text, NuvCharCode code);
bool IsPlainASCII(std::u16string_view text, NuvCharCode code);

/// Undecodable bytes become U+FFFD.
std::u16string Decode(std::string_view text, NuvCharCode code);

/// The length of what Decode returns.
size_t DecodedLength(std::string_view text, NuvCharCode code);

/// Appends the encoded text to `out`; false, with `out` in any state, when a character is lost under
/// OnLoss::Fail.
/// @param utf8Replacement replaces a lone surrogate in UTF-8; other code pages replace by `?`
bool Encode(std::u16string_view text, NuvCharCode code, OnLoss onLoss, std::string& out,
            char32_t utf8Replacement = U'?');

/// The length of what Encode appends; 0 where that fails.
size_t EncodedLength(std::u16string_view text, NuvCharCode code, OnLoss onLoss);

} // namespace Nuv::CodePages
