/// @file
/// Surrogate pairs in UTF-16 text. Private to the library.
#pragma once

#include <cstddef>

namespace NuvXML
{

constexpr bool IsSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }
constexpr bool IsLeadSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool IsTrailSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

/// Whether a whole pair stands at `text`, which is before `end`.
constexpr bool IsPairAt(const char16_t* text, const char16_t* end)
{
    return IsLeadSurrogate(*text) && end - text > 1 && IsTrailSurrogate(text[1]);
}

constexpr char32_t CodePointOfPair(char16_t lead, char16_t trail)
{
    return 0x10000 + ((static_cast<char32_t>(lead) - 0xD800) << 10) + (static_cast<char32_t>(trail) - 0xDC00);
}

} // namespace NuvXML
