/// @file
/// Text of the application: UTF-16 strings, 8-bit strings and the code pages between them.
///
/// 8-bit text is in the *local code page* unless a function says otherwise. The local code page is a
/// property of the process: the code set of the environment's locale, or UTF-8 when that is plain ASCII or
/// unknown. ICU converts, with one difference: a character that a code page lacks is never dropped or
/// replaced by a similar one. It is reported, or becomes a question mark.
#pragma once

#include "NuvRoot/Export.hpp"

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>

namespace Nuv
{

using UniChar = char16_t;

/// 8-bit text in the local code page.
using String = std::string;

/// Which code page 8-bit text is in.
enum NuvCharCode
{
    CC_Default = 0, ///< the local code page
    CC_UTF8 = 99
};

enum CaseSensitivity
{
    CaseSensitive,
    CaseInsensitive ///< full Unicode case folding: "straße" equals "STRASSE"
};

/// Changes the local code page of the process. Not synchronised: call it before other threads convert text.
/// @param ianaName a name that ICU knows, e.g. "windows-1252"
/// @throws GeneralException when the name is null, empty or unknown; the code page stays as it was
NUVROOT_API void SetLocalCodePage(const char* ianaName);

/// The name of the local code page, valid until SetLocalCodePage is called.
NUVROOT_API const char* GetLocalCodePage();

/// @name Views
/// Operations on text in any container. None of them allocates.
/// @{

/// Returns `text` without the characters at both ends that have the Unicode property White_Space.
NUVROOT_API std::u16string_view Trimmed(std::u16string_view text);

/// Equality under full Unicode case folding.
NUVROOT_API bool EqualIgnoringCase(std::u16string_view left, std::u16string_view right);

/// @}

class UniString;

/// One argument of UniString::Printf, with its type.
class NUVROOT_API FormatArgument
{
  public:
    FormatArgument(const char* text)
        : kind(Kind::Narrow)
        , narrow(text ? std::string_view(text) : std::string_view())
    {
    }
    FormatArgument(const String& text)
        : kind(Kind::Narrow)
        , narrow(text)
    {
    }
    FormatArgument(const UniChar* text)
        : kind(Kind::Wide)
        , wide(text ? std::u16string_view(text) : std::u16string_view())
    {
    }
    FormatArgument(const UniString& text);

    template <class Integer>
    requires std::is_integral_v<Integer> FormatArgument(Integer value)
        : kind(std::is_signed_v<Integer> ? Kind::Signed : Kind::Unsigned)
        , number(static_cast<unsigned long long>(value))
    {
    }

    void AppendTo(std::u16string& text) const;

  private:
    enum class Kind
    {
        Narrow,
        Wide,
        Signed,
        Unsigned
    };
    Kind kind;
    std::string_view narrow;
    std::u16string_view wide;
    unsigned long long number = 0;
};

/// A UTF-16 string with value semantics. Positions and lengths count UTF-16 units; lone surrogates are kept.
class NUVROOT_API UniString
{
  public:
    UniString() = default;

    /// Zero-terminated 8-bit text; null is the empty string. Undecodable bytes become U+FFFD.
    explicit UniString(const char* text, NuvCharCode code = CC_Default);

    /// 8-bit text, embedded zeros included. Undecodable bytes become U+FFFD.
    explicit UniString(const String& text, NuvCharCode code = CC_Default);

    /// Zero-terminated UTF-16 text; null is the empty string.
    UniString(const UniChar* text);

    /// `length` units at `text`; null is the empty string.
    UniString(const UniChar* text, size_t length);

    UniString(std::u16string_view text)
        : units(text)
    {
    }

    /// Replaces the contents by zero-terminated text in the local code page; null makes the string empty.
    UniString& operator=(const char* text);

    static UniString FromUTF8(std::string_view text);

    // Contents.

    size_t GetLength() const { return units.length(); }
    bool IsEmpty() const { return units.empty(); }
    UniChar operator[](size_t index) const { return units[index]; }
    std::u16string_view View() const { return units; }

    /// Zero-terminated text, valid until the string changes.
    const UniChar* ToUTF16() const { return units.c_str(); }

    /// 8-bit text; a character that the code page lacks becomes one `?`.
    String ToString(NuvCharCode code = CC_Default) const;

    /// Well-formed UTF-8; half a surrogate pair becomes U+FFFD.
    std::string ToUTF8() const;

    /// The text of ToUTF8 as a new zero-terminated array, which the caller frees with `delete[]`.
    char* CopyUTF8() const;

    // Editing in place.

    UniString& operator+=(const UniString& text);
    UniString& operator+=(UniChar unit);

    /// Inserts `text` before `position`; a position beyond the end is the end.
    void Insert(size_t position, const UniString& text);

    /// Removes up to `count` units from `position` on; a position beyond the end removes nothing.
    void Delete(size_t position, size_t count);

    /// Replaces every occurrence of `what`, from left to right; an empty `what` occurs nowhere.
    void ReplaceAll(const UniString& what, const UniString& replacement);

    /// Takes every character with the Unicode property White_Space off both ends.
    void Trim();

    /// Lower case by the Unicode rules of no particular language.
    void ToLower();

    /// Replaces the contents. `%s`, `%S`, `%d` and `%u` are each replaced by the next argument, `%%` by a
    /// percent sign; all else is copied. The type of the argument decides the format, not the directive:
    /// 8-bit text is in the local code page, integers are written in decimal.
    /// @throws GeneralException when there are more directives than arguments; the contents are then
    /// unchanged
    template <class... Arguments>
    void Printf(const char* format, const Arguments&... arguments)
    {
        Format(format, {FormatArgument(arguments)...});
    }

    // Comparison, by UTF-16 unit.

    bool IsEqual(const UniString& other, CaseSensitivity sensitivity = CaseSensitive) const;

    friend bool operator==(const UniString& left, const UniString& right)
    {
        return left.units == right.units;
    }
    friend bool operator<(const UniString& left, const UniString& right) { return left.units < right.units; }
    friend UniString operator+(const UniString& left, const UniString& right)
    {
        UniString sum(left);
        sum += right;
        return sum;
    }

  private:
    void Format(const char* format, std::initializer_list<FormatArgument> arguments);

    std::u16string units;
};

inline FormatArgument::FormatArgument(const UniString& text)
    : kind(Kind::Wide)
    , wide(text.View())
{
}

/// Writes the text as UTF-8.
NUVROOT_API std::ostream& operator<<(std::ostream& stream, const UniString& text);

/// @name Code-page converters
/// Both return the number of units or bytes written. They return 0 for failure, and for an empty text of
/// length 0. A `length` of -1 means zero-terminated text; the terminator is converted and counted. With a
/// null `out` or a capacity of 0 they only count. They fail, with `out` unchanged, when the result does not
/// fit into `capacity` or its length into an `int`. `reserved` is ignored.
/// @{

/// Decodes 8-bit text. Undecodable bytes become U+FFFD. Fails for null text.
NUVROOT_API int CHANSI2Unicode(const char* text, int length, UniChar* out, int capacity, NuvCharCode code,
                               const void* reserved = nullptr);

/// Encodes UTF-16 text. A character that would not come back from the code page becomes one `?` when `lossy`,
/// and fails otherwise. Fails for null text.
NUVROOT_API int CHUnicode2ANSI(const UniChar* units, int length, char* out, int capacity, NuvCharCode code,
                               bool lossy, const void* reserved = nullptr);

/// @}

} // namespace Nuv

using Nuv::CHANSI2Unicode;
using Nuv::CHUnicode2ANSI;

/// @cond
template <>
struct std::hash<Nuv::UniString>
{
    size_t operator()(const Nuv::UniString& text) const noexcept
    {
        return std::hash<std::u16string_view>()(text.View());
    }
};
/// @endcond
