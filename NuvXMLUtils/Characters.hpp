/// @file
/// Characters in UTF-16 text: surrogate pairs and character references.
#pragma once

#include "NuvXMLUtils/Xerces.hpp"

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include <cstddef>
#include <string>

namespace NuvXML
{

constexpr bool IsSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }
constexpr bool IsLeadSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool IsTrailSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

/// Whether a whole pair begins at `text`, which is before `end`.
constexpr bool IsPairAt(const char16_t* text, const char16_t* end)
{
    return IsLeadSurrogate(*text) && end - text > 1 && IsTrailSurrogate(text[1]);
}

/// The number of units of the character at `text`, which is before `end`. A lone surrogate is a character.
constexpr size_t LengthOfCharacterAt(const char16_t* text, const char16_t* end)
{
    return IsPairAt(text, end) ? 2 : 1;
}

constexpr char32_t CharacterAt(const char16_t* text, const char16_t* end)
{
    if (!IsPairAt(text, end))
        return *text;
    return 0x10000 + ((static_cast<char32_t>(text[0]) - 0xD800) << 10) +
           (static_cast<char32_t>(text[1]) - 0xDC00);
}

/// Whether a character is a lone surrogate.
constexpr bool IsHalf(char32_t character) { return (character & ~char32_t(0x7FF)) == 0xD800; }

/// The character reference, e.g. "&#x1F600;".
inline std::u16string ReferenceTo(char32_t character)
{
    constexpr XMLSize_t MaxDigits = 8;
    XMLCh digits[MaxDigits + 1];
    xercesc_3_0::XMLString::binToText(static_cast<unsigned>(character), digits, MaxDigits, 16,
                                      xercesc_3_0::XMLPlatformUtils::fgMemoryManager);
    return std::u16string(u"&#x").append(digits).append(u";");
}

} // namespace NuvXML
