#include "NuvRoot/CodePages.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/LocalCodePage.hpp"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>

namespace Nuv
{
namespace
{

template <class Character>
bool IsASCII(std::basic_string_view<Character> text)
{
    return std::none_of(text.begin(), text.end(), [](Character unit) { return (unit & ~0x7F) != 0; });
}

// ICU counts in 32 bits; so text is converted in pieces, of which the result goes to `take` one after the
// other.

constexpr size_t PieceLength = 0x400;

template <class Take>
void DecodeUTF8(std::string_view text, Take take)
{
    while (!text.empty())
    {
        std::string_view piece = text.substr(0, PieceLength);
        int32_t length = static_cast<int32_t>(piece.size());
        if (piece.size() < text.size())
            U8_TRUNCATE_IF_INCOMPLETE(piece.data(), 0, length);
        UChar units[PieceLength]; // one a byte is enough
        int32_t count = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8WithSub(units, PieceLength, &count, piece.data(), length, 0xFFFD, nullptr, &status);
        take(std::u16string_view(units, static_cast<size_t>(count)));
        text.remove_prefix(static_cast<size_t>(length));
    }
}

/// @return false when something is lost that may not be
template <class Take>
bool EncodeUTF8(std::u16string_view text, CodePages::OnLoss onLoss, char32_t replacement, Take take)
{
    while (!text.empty())
    {
        size_t length = std::min(text.size(), PieceLength);
        if (length < text.size() && U16_IS_LEAD(text[length - 1]))
            --length;
        char bytes[PieceLength * 3];
        int32_t count = 0;
        int32_t replaced = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8WithSub(bytes, std::size(bytes), &count, text.data(), static_cast<int32_t>(length),
                           static_cast<UChar32>(replacement), &replaced, &status);
        if (replaced != 0 && onLoss == CodePages::OnLoss::Fail)
            return false;
        take(std::string_view(bytes, static_cast<size_t>(count)));
        text.remove_prefix(length);
    }
    return true;
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

/// Either direction of a converter.
template <class Source, class Target>
using Conversion = void(UConverter*, Target**, const Target*, const Source**, const Source*, int32_t*, UBool,
                        UErrorCode*);

/// Nothing when a callback leaves a fault as it is.
template <class Source, class Target>
std::optional<std::basic_string<Target>> Converted(Conversion<Source, Target>* convert, UConverter* converter,
                                                   std::basic_string_view<Source> text)
{
    std::basic_string<Target> result;
    result.reserve(text.size());
    const Source* next = text.data();
    const Source* const end = next + text.size();
    UErrorCode status = U_ZERO_ERROR;
    while (next != end || status == U_BUFFER_OVERFLOW_ERROR)
    {
        const Source* const pieceEnd = next + std::min(static_cast<size_t>(end - next), PieceLength);
        Target piece[PieceLength];
        Target* pieceNext = piece;
        status = U_ZERO_ERROR;
        convert(converter, &pieceNext, std::end(piece), &next, pieceEnd, nullptr, pieceEnd == end, &status);
        if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR)
            return std::nullopt;
        result.append(piece, pieceNext);
    }
    return result;
}

std::u16string DecodeWith(UConverter* converter, std::string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_resetToUnicode(converter);
    ucnv_setToUCallBack(converter, DecodeFaultAsReplacementCharacter, nullptr, nullptr, nullptr, &status);
    return Converted<char, UChar>(ucnv_toUnicode, converter, text).value_or(std::u16string());
}

/// Nothing when the code page lacks a character.
std::optional<std::string> BytesOf(UConverter* converter, std::u16string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_resetFromUnicode(converter);
    ucnv_setFromUCallBack(converter, EncodeFaultAsError, nullptr, nullptr, nullptr, &status);
    ucnv_setFallback(converter, false);
    return Converted<UChar, char>(ucnv_fromUnicode, converter, text);
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

namespace CodePages
{
namespace
{

bool IsUTF8(NuvCharCode code) { return code == CC_UTF8 || Local().isUTF8; }

} // namespace

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
    if (!IsUTF8(code))
        return DecodeWith(OpenConverter(Local().name.c_str()).get(), text);
    std::u16string units;
    units.reserve(text.size());
    DecodeUTF8(text, [&units](std::u16string_view piece) { units += piece; });
    return units;
}

size_t DecodedLength(std::string_view text, NuvCharCode code)
{
    if (IsPlainASCII(text, code))
        return text.size();
    if (!IsUTF8(code))
        return Decode(text, code).size();
    size_t length = 0;
    DecodeUTF8(text, [&length](std::u16string_view piece) { length += piece.size(); });
    return length;
}

bool Encode(std::u16string_view text, NuvCharCode code, OnLoss onLoss, std::string& out,
            char32_t utf8Replacement)
{
    if (IsPlainASCII(text, code))
    {
        out.append(text.begin(), text.end());
        return true;
    }
    if (!IsUTF8(code))
        return EncodeWith(OpenConverter(Local().name.c_str()).get(), text, onLoss, out);
    out.reserve(out.size() + text.size());
    return EncodeUTF8(text, onLoss, utf8Replacement, [&out](std::string_view piece) { out += piece; });
}

size_t EncodedLength(std::u16string_view text, NuvCharCode code, OnLoss onLoss)
{
    if (IsPlainASCII(text, code))
        return text.size();
    size_t length = 0;
    if (IsUTF8(code))
        return EncodeUTF8(text, onLoss, U'?', [&length](std::string_view piece) { length += piece.size(); })
                   ? length
                   : 0;
    std::string bytes;
    return Encode(text, code, onLoss, bytes) ? bytes.size() : 0;
}

} // namespace CodePages
} // namespace Nuv
