// The first line chooses a code page, the rest is text, first of bytes and then of UTF-16 units: what is
// decoded or encoded without loss comes back, and UTF-8 is what ICU makes of it.

#include "fuzz/Support.hpp"

#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <cstring>
#include <optional>

namespace
{

using namespace Fuzz;

constexpr const char* CodePages[] = {"UTF-8",      "windows-1252", "ISO-8859-1",  "Shift_JIS",   "GB18030",
                                     "Big5-HKSCS", "EUC-JP",       "ISO-2022-JP", "ISO-2022-KR", "HZ",
                                     "UTF-7",      "IBM037",       "UTF-16LE"};

/// Runs a converter in its three ways: counting, with as much room as it needs and with too little.
template <class Unit, class Convert>
std::optional<std::basic_string<Unit>> Converted(Convert convert)
{
    const int count = convert(nullptr, 0);
    Check(count >= 0);
    if (count == 0)
        return std::nullopt;
    std::basic_string<Unit> out(static_cast<std::size_t>(count), Unit('#'));
    Check(count == 1 || convert(out.data(), count - 1) == 0);
    Check(out.find_first_not_of(Unit('#')) == out.npos);
    Check(convert(out.data(), count) == count);
    return out;
}

std::optional<std::u16string> Decoded(std::string_view text, Nuv::NuvCharCode code)
{
    return Converted<char16_t>(
        [&](char16_t* out, int capacity)
        { return CHANSI2Unicode(text.data(), static_cast<int>(text.size()), out, capacity, code); });
}

std::optional<std::string> Encoded(std::u16string_view text, Nuv::NuvCharCode code, bool lossy)
{
    return Converted<char>(
        [&](char* out, int capacity)
        { return CHUnicode2ANSI(text.data(), static_cast<int>(text.size()), out, capacity, code, lossy); });
}

void CheckEncoding(std::u16string_view text, Nuv::NuvCharCode code)
{
    if (text.empty())
        return;
    const auto lossy = Encoded(text, code, true);
    const auto strict = Encoded(text, code, false);
    Check(lossy.has_value());
    if (strict)
        Check(strict == lossy && Decoded(*strict, code) == text);
}

/// What ICU says, without this library.
void CheckUTF8(std::string_view text, std::u16string_view units)
{
    const auto expected =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    Check(Decoded(text, Nuv::CC_UTF8).value_or(u"") ==
          std::u16string_view(expected.getBuffer(), static_cast<std::size_t>(expected.length())));

    std::string bytes(3 * units.size(), '\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(bytes.data(), static_cast<std::int32_t>(bytes.size()), &length, units.data(),
                static_cast<std::int32_t>(units.size()), &status);
    bytes.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    Check(Encoded(units, Nuv::CC_UTF8, false).value_or("") == bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const Parts parts = Divide(TextOf(bytes, size));
    std::u16string units(parts.document.size() / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), parts.document.data(), units.size() * sizeof(char16_t));
    Nuv::SetLocalCodePage(Script(parts.script).Choose(CodePages));
    const auto decoded = Decoded(parts.document, Nuv::CC_Default);
    CheckEncoding(decoded.value_or(u""), Nuv::CC_Default);
    CheckEncoding(units, Nuv::CC_Default);
    CheckEncoding(units, Nuv::CC_UTF8);
    CheckUTF8(parts.document, units);
    return 0;
}
