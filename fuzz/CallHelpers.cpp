// Any text for the helper functions that trim, unquote, parse and make CDATA content: each does what a plain
// way of doing it does.

#include "fuzz/Support.hpp"

#include "NuvXMLUtils/DOMBasics.hpp"

#include <cerrno>
#include <charconv>
#include <limits>
#include <optional>

namespace
{

using namespace Fuzz;
using namespace NuvXMLUtils;

/// Nothing where a helper throws.
template <class Function>
auto ResultOf(Function function) -> std::optional<decltype(function())>
{
    try
    {
        return function();
    }
    catch (const ConvException&)
    {
        return std::nullopt;
    }
}

template <class Integer>
std::optional<Integer> IntegerIn(std::string_view text, std::string_view signs)
{
    const bool hasSign = !text.empty() && signs.find(text.front()) != signs.npos;
    const std::string_view digits = text.substr(hasSign ? 1 : 0);
    if (digits.empty() || digits.find_first_not_of("0123456789") != digits.npos)
        return std::nullopt;
    long long value = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc())
        return std::nullopt;
    value = hasSign && text.front() == '-' ? -value : value;
    if (value < std::numeric_limits<Integer>::min() || value > std::numeric_limits<Integer>::max())
        return std::nullopt;
    return static_cast<Integer>(value);
}

std::optional<double> DoubleIn(const std::string& text)
{
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text.c_str(), &end);
    if (end == text.c_str() || *end || (errno == ERANGE && value != 0))
        return std::nullopt;
    return value;
}

void CheckNumbers(const std::string& text)
{
    const char* const s = text.c_str();
    Check(ResultOf([&] { return GetIntNum(s); }) == IntegerIn<unsigned int>(text, ""));
    Check(ResultOf([&] { return GetULong(s); }) == IntegerIn<unsigned int>(text, "+"));
    Check(ResultOf([&] { return GetSignedLong(s); }) == IntegerIn<int>(text, "+-"));
    const std::optional<double> number = ResultOf([&] { return GetDouble(s); });
    const std::optional<double> expected = DoubleIn(text);
    Check(number == expected || (number && expected && *number != *number && *expected != *expected));
}

template <class Unit>
void CheckTrimming(std::basic_string<Unit> text, void (*cut)(Unit*&), const Unit* blanks)
{
    const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
    const std::size_t last = text.find_last_not_of(blanks);
    const std::basic_string<Unit> expected = text.substr(first, last == text.npos ? 0 : last - first + 1);
    Unit* s = text.data();
    cut(s);
    Check(s == text.data() + first && s == expected);
}

template <class Unit>
void CheckUnquoting(std::basic_string<Unit> text, Unit* (*unquote)(Unit*))
{
    constexpr Unit Quotes[] = {'"', '\'', '`', 0};
    const bool isQuoted = text.size() >= 2 && text.front() == text.back() &&
                          std::basic_string_view<Unit>(Quotes).find(text.front()) != text.npos;
    const std::basic_string<Unit> original = text;
    const auto unquoted = ResultOf([&] { return unquote(text.data()); });
    Check(unquoted.has_value() == isQuoted);
    Check(isQuoted ? *unquoted == original.substr(1, original.size() - 2) : text == original);
}

std::u16string WithLineFeeds(std::u16string_view text)
{
    std::u16string result;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != u'\r')
            result += text[i];
        else if (text.substr(i + 1, 1) != u"\n")
            result += u'\n';
    return result;
}

void CheckQuoting(const Nuv::UniString& text)
{
    char16_t quote = u'"';
    for (const char16_t candidate : {u'`', u'\'', u'"'})
        if (text.View().find(candidate) == std::u16string_view::npos)
            quote = candidate;
    Nuv::UniString quoted = text;
    MakeItTAMString(quoted);
    Check(quoted.View() == quote + std::u16string(text.View()) + quote);
}

void CheckCDATA(const Nuv::UniString& text)
{
    Nuv::UniString content = text;
    CorrectCDATA(content);
    Check(content.View().find(u"]]>") == std::u16string_view::npos);
    ConvertCDATA(content);
    Check(content.View() == WithLineFeeds(text.View()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string text(std::string(TextOf(bytes, size)).c_str()); // a zero ends it
    CheckNumbers(text);
    CheckTrimming<char>(text, CutTabSpace, " \t");
    CheckTrimming<char>(text, CutWhSpace, " \t\n\r");
    CheckUnquoting<char>(text, GetStringValue);

    constexpr unsigned short Blanks[] = {' ', '\t', '\n', '\r', 0};
    const Nuv::UniString units = Nuv::UniString::FromUTF8(text);
    const std::basic_string<unsigned short> shorts(units.View().begin(), units.View().end());
    CheckTrimming<unsigned short>(shorts, CutWhSpaceU, Blanks);
    CheckUnquoting<unsigned short>(shorts, GetStringValueU);
    CheckQuoting(units);
    CheckCDATA(units);
    return 0;
}
