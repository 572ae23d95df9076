#include "NuvRoot/UniString.hpp"

#include "NuvRoot/CodePages.hpp"
#include "NuvRoot/Exceptions.hpp"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>
#include <ostream>

namespace Nuv
{
namespace
{

std::string_view OrEmpty(const char* text) { return text ? std::string_view(text) : std::string_view(); }

template <class Character>
std::basic_string_view<Character> Measured(const Character* text, int length)
{
    return length < 0 ? std::basic_string_view<Character>(text, std::char_traits<Character>::length(text) + 1)
                      : std::basic_string_view<Character>(text, static_cast<size_t>(length));
}

/// Every white-space character is a single unit. ICU's table is not needed for ASCII.
bool IsWhiteSpace(char16_t unit)
{
    constexpr char16_t FirstBeyondASCII = 0x80;
    if (unit < FirstBeyondASCII)
        return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
    return u_isUWhiteSpace(unit) != 0;
}

/// The result of a converter; 0 is failure.
int Count(size_t count)
{
    return count <= static_cast<size_t>(std::numeric_limits<int>::max()) ? static_cast<int>(count) : 0;
}

template <class Source, class Character>
int Copy(const Source& converted, Character* out, int capacity)
{
    if (capacity < 0 || converted.size() > static_cast<size_t>(capacity))
        return 0;
    std::copy(converted.begin(), converted.end(), out);
    return static_cast<int>(converted.size());
}

} // namespace

std::u16string_view Trimmed(std::u16string_view text)
{
    while (!text.empty() && IsWhiteSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsWhiteSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

bool EqualIgnoringCase(std::u16string_view left, std::u16string_view right)
{
    if (left == right)
        return true;
    // Folding never makes a text empty, and ICU calls anything equal to a null pointer.
    if (left.empty() || right.empty())
        return false;
    UErrorCode status = U_ZERO_ERROR;
    return u_strCaseCompare(left.data(), static_cast<int32_t>(left.size()), right.data(),
                            static_cast<int32_t>(right.size()), U_FOLD_CASE_DEFAULT, &status) == 0;
}

void FormatArgument::AppendTo(std::u16string& text) const
{
    switch (kind)
    {
    case Kind::Narrow:
        text += CodePages::Decode(narrow, CC_Default);
        break;
    case Kind::Wide:
        text += wide;
        break;
    case Kind::Signed:
    case Kind::Unsigned:
        char digits[24];
        const char* end = kind == Kind::Signed
                              ? std::to_chars(digits, std::end(digits), static_cast<long long>(number)).ptr
                              : std::to_chars(digits, std::end(digits), number).ptr;
        text.append(static_cast<const char*>(digits), end);
        break;
    }
}

UniString::UniString(const char* text, NuvCharCode code)
    : units(CodePages::Decode(OrEmpty(text), code))
{
}

UniString::UniString(const String& text, NuvCharCode code)
    : units(CodePages::Decode(text, code))
{
}

UniString::UniString(const UniChar* text)
{
    if (text)
        units = text;
}

UniString::UniString(const UniChar* text, size_t length)
{
    if (text)
        units.assign(text, length);
}

UniString& UniString::operator=(const char* text)
{
    units = CodePages::Decode(OrEmpty(text), CC_Default);
    return *this;
}

UniString UniString::FromUTF8(std::string_view text)
{
    UniString result;
    result.units = CodePages::Decode(text, CC_UTF8);
    return result;
}

String UniString::ToString(NuvCharCode code) const
{
    String bytes;
    CodePages::Encode(units, code, CodePages::OnLoss::Replace, bytes);
    return bytes;
}

std::string UniString::ToUTF8() const
{
    std::string bytes;
    CodePages::Encode(units, CC_UTF8, CodePages::OnLoss::Replace, bytes, 0xFFFD);
    return bytes;
}

char* UniString::CopyUTF8() const
{
    const std::string bytes = ToUTF8();
    auto copy = std::make_unique<char[]>(bytes.size() + 1);
    std::copy_n(bytes.c_str(), bytes.size() + 1, copy.get());
    return copy.release();
}

UniString& UniString::operator+=(const UniString& text)
{
    units += text.units;
    return *this;
}

UniString& UniString::operator+=(UniChar unit)
{
    units += unit;
    return *this;
}

void UniString::Insert(size_t position, const UniString& text)
{
    units.insert(std::min(position, units.size()), text.units);
}

void UniString::Delete(size_t position, size_t count)
{
    if (position < units.size())
        units.erase(position, count);
}

void UniString::ReplaceAll(const UniString& what, const UniString& replacement)
{
    if (what.IsEmpty())
        return;
    std::u16string result;
    size_t start = 0;
    for (size_t found; (found = units.find(what.units, start)) != std::u16string::npos;)
    {
        result.append(units, start, found - start);
        result += replacement.units;
        start = found + what.units.size();
    }
    if (start == 0)
        return;
    result.append(units, start);
    units = std::move(result);
}

void UniString::Trim()
{
    const std::u16string_view trimmed = Trimmed(units);
    if (trimmed.size() != units.size())
        units = std::u16string(trimmed);
}

void UniString::ToLower()
{
    std::u16string lower(units.size(), u'\0');
    for (;;)
    {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = u_strToLower(lower.data(), static_cast<int32_t>(lower.size()), units.data(),
                                            static_cast<int32_t>(units.size()), "", &status);
        const bool fits = static_cast<size_t>(length) <= lower.size();
        lower.resize(static_cast<size_t>(length));
        if (fits)
            break;
    }
    units = std::move(lower);
}

bool UniString::IsEqual(const UniString& other, CaseSensitivity sensitivity) const
{
    return sensitivity == CaseSensitive ? *this == other : EqualIgnoringCase(units, other.units);
}

void UniString::Format(const char* format, std::initializer_list<FormatArgument> arguments)
{
    std::u16string result;
    const FormatArgument* next = arguments.begin();
    const std::u16string pattern = CodePages::Decode(OrEmpty(format), CC_Default);
    for (size_t i = 0; i < pattern.size(); ++i)
    {
        const UniChar directive = pattern[i] == u'%' && i + 1 < pattern.size() ? pattern[i + 1] : u'\0';
        switch (directive)
        {
        case u'%':
            result += u'%';
            ++i;
            break;
        case u's':
        case u'S':
        case u'd':
        case u'u':
            if (next == arguments.end())
                throw GeneralException(UniString(u"A format has more directives than arguments."),
                                       "UniString", __LINE__);
            next++->AppendTo(result);
            ++i;
            break;
        default:
            result += pattern[i];
        }
    }
    units = std::move(result);
}

std::ostream& operator<<(std::ostream& stream, const UniString& text) { return stream << text.ToUTF8(); }

int CHANSI2Unicode(const char* text, int length, UniChar* out, int capacity, NuvCharCode code, const void*)
{
    if (!text)
        return 0;
    const std::string_view source = Measured(text, length);
    if (!out || capacity == 0)
        return Count(CodePages::DecodedLength(source, code));
    if (CodePages::IsPlainASCII(source, code))
        return Copy(source, out, capacity);
    return Copy(CodePages::Decode(source, code), out, capacity);
}

int CHUnicode2ANSI(const UniChar* units, int length, char* out, int capacity, NuvCharCode code, bool lossy,
                   const void*)
{
    if (!units)
        return 0;
    const std::u16string_view source = Measured(units, length);
    const auto onLoss = lossy ? CodePages::OnLoss::Replace : CodePages::OnLoss::Fail;
    if (!out || capacity == 0)
        return Count(CodePages::EncodedLength(source, code, onLoss));
    std::string bytes;
    if (!CodePages::Encode(source, code, onLoss, bytes))
        return 0;
    return Copy(bytes, out, capacity);
}

} // namespace Nuv
