// Any text as a number of each type: strtovalue reads what std::from_chars reads in trimmed text, and what
// valuetostr makes of it is read back.

#include "fuzz/Support.hpp"

#include "NuvRoot/ValueText.hpp"

#include <charconv>
#include <cmath>
#include <optional>
#include <type_traits>

namespace
{

using namespace Fuzz;

constexpr std::u16string_view WhiteSpace =
    u"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A"
    u"\u2028\u2029\u202F\u205F\u3000";

/// The number in ASCII without a plus sign before it; empty text is no number.
std::string NumberIn(std::u16string_view text)
{
    const std::size_t first = text.find_first_not_of(WhiteSpace);
    if (first == text.npos)
        return {};
    text = text.substr(first, text.find_last_not_of(WhiteSpace) - first + 1);
    if (text.find_first_not_of(u"0123456789+-.eE") != text.npos)
        return {};
    const bool hasPlus = text.front() == u'+' && text.substr(1, 1) != u"-";
    return std::string(text.begin() + (hasPlus ? 1 : 0), text.end());
}

/// What is nearest to a number that std::from_chars finds out of range; nothing when that is infinity.
template <class T>
std::optional<T> Nearest(const std::string& number)
{
    if constexpr (std::is_integral_v<T>)
        return std::nullopt;
    const auto value = static_cast<T>(std::is_same_v<T, float> ? std::strtof(number.c_str(), nullptr)
                                                               : std::strtod(number.c_str(), nullptr));
    return std::isinf(value) ? std::nullopt : std::optional<T>(value);
}

template <class T>
std::optional<T> Expected(const std::string& number)
{
    using Parsed = std::conditional_t<std::is_same_v<T, char>, signed char, T>;
    T value = 0;
    const char* const end = number.data() + number.size();
    const auto [stop, error] = std::from_chars(number.data(), end, reinterpret_cast<Parsed&>(value));
    if (stop != end || error == std::errc::invalid_argument)
        return std::nullopt;
    return error == std::errc() ? std::optional<T>(value) : Nearest<T>(number);
}

template <class T>
void CheckWritten(T value)
{
    Nuv::UniChar text[64];
    Check(Nuv::valuetostr(value, text, std::size(text)));
    T read = 0;
    Check(Nuv::strtovalue(text, read) && read == value && std::signbit(read) == std::signbit(value));
    const std::size_t length = std::u16string_view(text).size();
    text[0] = u'?';
    Check(!Nuv::valuetostr(value, text, length) && text[0] == u'?');
}

template <class T>
void CheckRead(const Nuv::UniString& text, const std::string& number)
{
    constexpr T Untouched = 77;
    T value = Untouched;
    const std::optional<T> expected = Expected<T>(number);
    Check(Nuv::strtovalue(text.View(), value) == expected.has_value());
    Check(value == expected.value_or(Untouched));
    Check(std::signbit(value) == std::signbit(expected.value_or(Untouched)));
    CheckWritten(value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const Nuv::UniString text = Nuv::UniString::FromUTF8(TextOf(bytes, size));
    const std::string number = NumberIn(text.View());
#define CHECK_READ(Type) CheckRead<Type>(text, number);
    NUV_FOR_EACH_NUMBER_TYPE(CHECK_READ)
    return 0;
}
