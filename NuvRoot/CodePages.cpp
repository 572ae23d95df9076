#include "NuvRoot/CodePages.hpp"

#include "NuvRoot/Exceptions.hpp"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstring>
#include <langinfo.h>
#include <limits>
#include <locale.h>
#include <memory>
#include <optional>

namespace Nuv
{
namespace
{

struct CloseConverter
{
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

/// Whether ICU has its table of names. If there was no memory for it when it was first needed, ICU finds no
/// name from then on.
bool HasTableOfNames()
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_countAliases("UTF-8", &status);
    return U_SUCCESS(status);
}

/// Null when ICU does not know the name.
Converter OpenConverter(const char* name)
{
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &status));
    if (status == U_MEMORY_ALLOCATION_ERROR || (U_FAILURE(status) && !HasTableOfNames()))
        throw OutOfMemoryException();
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

bool IsUTF8(UConverter* converter) { return ucnv_getType(converter) == UCNV_UTF8; }

/// Whether ASCII text is the same text in the code page, so that it needs no converter. False for EBCDIC, for
/// UTF-16 and for code pages with escape sequences.
bool HoldsASCII(UConverter* converter)
{
    for (UChar expected = 0; expected < 0x80; ++expected)
    {
        UErrorCode status = U_ZERO_ERROR;
        UChar unit[4];
        const char byte = static_cast<char>(expected);
        const int32_t length = ucnv_toUChars(converter, unit, 4, &byte, 1, &status);
        if (U_FAILURE(status) || length != 1 || unit[0] != expected)
            return false;
    }
    return true;
}

template <class Character>
bool IsASCII(std::basic_string_view<Character> text)
{
    return std::none_of(text.begin(), text.end(), [](Character unit) { return (unit & ~0x7F) != 0; });
}

constexpr char UTF8Name[] = "UTF-8";

/// The code set that the environment asks for, which need not be the one of the process's C locale.
std::string CodeSetOfEnvironment()
{
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (!locale)
        return UTF8Name;
    std::string codeSet = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    const Converter converter = OpenConverter(codeSet.c_str());
    if (codeSet.empty() || !converter || ucnv_getType(converter.get()) == UCNV_US_ASCII)
        return UTF8Name;
    return codeSet;
}

struct LocalCodePage
{
    std::string name;
    bool isUTF8;
    bool holdsASCII;

    LocalCodePage(std::string codePage, UConverter* converter)
        : name(std::move(codePage))
        , isUTF8(IsUTF8(converter))
        , holdsASCII(HoldsASCII(converter))
    {
    }
};

LocalCodePage& Local()
{
    static LocalCodePage page = []
    {
        const std::string name = CodeSetOfEnvironment();
        return LocalCodePage(name, OpenConverter(name.c_str()).get());
    }();
    return page;
}

/// ICU counts in 32 bits.
int32_t CheckedLength(size_t length)
{
    if (length > static_cast<size_t>(std::numeric_limits<int32_t>::max()))
        throw GeneralException(UniString(u"The text is too long to be converted."), "CodePages", __LINE__);
    return static_cast<int32_t>(length);
}

std::u16string DecodeUTF8(std::string_view text)
{
    std::u16string units(text.size(), u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<int32_t>(units.size()), &length, text.data(),
                         CheckedLength(text.size()), 0xFFFD, nullptr, &status);
    units.resize(static_cast<size_t>(length));
    return units;
}

bool EncodeUTF8(std::u16string_view text, CodePages::OnLoss onLoss, std::string& out, char32_t replacement)
{
    const size_t start = out.size();
    out.resize(start + text.size() * 3);
    int32_t length = 0;
    int32_t replaced = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(out.data() + start, CheckedLength(out.size() - start), &length, text.data(),
                       CheckedLength(text.size()), static_cast<UChar32>(replacement), &replaced, &status);
    out.resize(start + static_cast<size_t>(length));
    return onLoss == CodePages::OnLoss::Replace || replaced == 0;
}

bool IsConversionFault(UConverterCallbackReason reason)
{
    return reason == UCNV_UNASSIGNED || reason == UCNV_ILLEGAL || reason == UCNV_IRREGULAR;
}

// ICU's own callbacks, the stopping one too, drop default-ignorable characters such as U+200B without a word,
// and may substitute U+001A; these do neither.

void DecodeFaultAsReplacementCharacter(const void*, UConverterToUnicodeArgs* arguments, const char*, int32_t,
                                       UConverterCallbackReason reason, UErrorCode* status)
{
    if (!IsConversionFault(reason))
        return;
    static const UChar replacement[] = {0xFFFD};
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(arguments, replacement, 1, 0, status);
}

void EncodeFaultAsError(const void*, UConverterFromUnicodeArgs*, const UChar*, int32_t, UChar32,
                        UConverterCallbackReason, UErrorCode*)
{
    // The status already tells the fault.
}

std::u16string DecodeWith(UConverter* converter, std::string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter, DecodeFaultAsReplacementCharacter, nullptr, nullptr, nullptr, &status);
    // One unit a byte is enough for most code pages; ICU tells when it is not.
    std::u16string units(text.size(), u'\0');
    for (;;)
    {
        status = U_ZERO_ERROR;
        const int32_t length = ucnv_toUChars(converter, units.data(), CheckedLength(units.size()),
                                             text.data(), CheckedLength(text.size()), &status);
        const bool fits = static_cast<size_t>(length) <= units.size();
        units.resize(static_cast<size_t>(length));
        if (fits)
            return units;
    }
}

/// Nothing when the code page lacks a character.
std::optional<std::string> BytesOf(UConverter* converter, std::u16string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter, EncodeFaultAsError, nullptr, nullptr, nullptr, &status);
    ucnv_setFallback(converter, false);
    // The ten extra characters make room for the escape sequences of stateful code pages.
    std::string bytes((text.size() + 10) * static_cast<size_t>(ucnv_getMaxCharSize(converter)), '\0');
    const int32_t length = ucnv_fromUChars(converter, bytes.data(), CheckedLength(bytes.size()), text.data(),
                                           CheckedLength(text.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    bytes.resize(static_cast<size_t>(length));
    return bytes;
}

/// Nothing when a character would not come back: some tables map private characters one way only, whatever
/// ucnv_setFallback says.
std::optional<std::string> ExactBytesOf(UConverter* converter, std::u16string_view text)
{
    std::optional<std::string> bytes = BytesOf(converter, text);
    if (bytes && DecodeWith(converter, *bytes) != text)
        return std::nullopt;
    return bytes;
}

/// The text with a question mark for each character that the code page lacks.
std::u16string WithQuestionMarks(UConverter* converter, std::u16string_view text)
{
    std::u16string result;
    for (size_t start = 0, end = 0; start < text.size(); start = end)
    {
        U16_FWD_1(text, end, text.size());
        const std::u16string_view character = text.substr(start, end - start);
        result += ExactBytesOf(converter, character) ? character : u"?";
    }
    return result;
}

bool EncodeWith(UConverter* converter, std::u16string_view text, CodePages::OnLoss onLoss, std::string& out)
{
    std::optional<std::string> bytes = ExactBytesOf(converter, text);
    if (!bytes && onLoss == CodePages::OnLoss::Replace)
        bytes = BytesOf(converter, WithQuestionMarks(converter, text));
    if (bytes)
        out += *bytes;
    return bytes.has_value();
}

} // namespace

void SetLocalCodePage(const char* ianaName)
{
    const Converter converter = ianaName && *ianaName ? OpenConverter(ianaName) : nullptr;
    if (!converter)
        throw GeneralException(UniString(u"Unknown code page: ") + UniString(ianaName), "CodePages",
                               __LINE__);
    Local() = LocalCodePage(ianaName, converter.get());
}

const char* GetLocalCodePage() { return Local().name.c_str(); }

namespace CodePages
{

bool IsPlainASCII(std::string_view text, NuvCharCode code)
{
    return (code == CC_UTF8 || Local().holdsASCII) && IsASCII(text);
}

bool IsPlainASCII(std::u16string_view text, NuvCharCode code)
{
    return (code == CC_UTF8 || Local().holdsASCII) && IsASCII(text);
}

std::u16string Decode(std::string_view text, NuvCharCode code)
{
    if (IsPlainASCII(text, code))
        return std::u16string(text.begin(), text.end());
    if (code == CC_UTF8 || Local().isUTF8)
        return DecodeUTF8(text);
    return DecodeWith(OpenConverter(Local().name.c_str()).get(), text);
}

bool Encode(std::u16string_view text, NuvCharCode code, OnLoss onLoss, std::string& out,
            char32_t utf8Replacement)
{
    if (IsPlainASCII(text, code))
    {
        out.append(text.begin(), text.end());
        return true;
    }
    if (code == CC_UTF8 || Local().isUTF8)
        return EncodeUTF8(text, onLoss, out, utf8Replacement);
    return EncodeWith(OpenConverter(Local().name.c_str()).get(), text, onLoss, out);
}

} // namespace CodePages
} // namespace Nuv
