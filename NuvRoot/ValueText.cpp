#include "NuvRoot/ValueText.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>

namespace Nuv
{
namespace
{

bool IsDigit(UniChar unit) { return unit >= u'0' && unit <= u'9'; }

/// Takes a sign off the front of `text`; true for a minus.
bool TakeSign(std::u16string_view& text)
{
    const UniChar sign = text.empty() ? u'\0' : text.front();
    if (sign == u'+' || sign == u'-')
        text.remove_prefix(1);
    return sign == u'-';
}

template <std::integral Integer>
bool Parse(std::u16string_view text, Integer& value)
{
    using Magnitude = unsigned long long;
    const bool negative = TakeSign(text);
    if (text.empty() || (negative && std::is_unsigned_v<Integer>))
        return false;
    const Magnitude limit = static_cast<Magnitude>(std::numeric_limits<Integer>::max()) + (negative ? 1 : 0);
    Magnitude magnitude = 0;
    for (const UniChar unit : text)
    {
        if (!IsDigit(unit))
            return false;
        const auto digit = static_cast<Magnitude>(unit - u'0');
        if (magnitude > (limit - digit) / 10)
            return false;
        magnitude = magnitude * 10 + digit;
    }
    value = static_cast<Integer>(negative ? Magnitude{0} - magnitude : magnitude);
    return true;
}

/// A decimal number in the form that std::from_chars reads, however long its text was: more digits than any
/// rounding decision looks at are told by one last digit that is not zero.
class DecimalText
{
  public:
    /// Reads digits, point and exponent; false where `text` is anything else.
    bool Read(std::u16string_view text)
    {
        size_t position = ReadDigits(text, 0, 0);
        if (position < text.size() && text[position] == u'.')
            position = ReadDigits(text, position + 1, -1);
        if (!hasDigits)
            return false;
        return position == text.size() || ReadExponent(text.substr(position));
    }

    template <std::floating_point Float>
    bool ToValue(bool negative, Float& value)
    {
        Float magnitude = 0;
        if (digitCount != 0)
        {
            const bool isLarge = exponent + static_cast<long long>(digitCount) > 0;
            if (droppedNonZero)
            {
                digits[digitCount++] = '1';
                --exponent;
            }
            digits[digitCount++] = 'e';
            const char* end = std::to_chars(digits + digitCount, std::end(digits),
                                            std::clamp(exponent, -ExponentLimit, ExponentLimit))
                                  .ptr;
            if (std::from_chars(digits, end, magnitude).ec == std::errc::result_out_of_range)
                magnitude = isLarge ? std::numeric_limits<Float>::infinity() : 0;
        }
        if (std::isinf(magnitude))
            return false;
        value = negative ? -magnitude : magnitude;
        return true;
    }

  private:
    /// The decision how to round a double never needs more than 768 digits.
    static constexpr size_t MaxDigits = 800;

    /// Far outside every floating-point type, even after MaxDigits digits.
    static constexpr long long ExponentLimit = 100'000;

    /// Collects digits from `position` on; each changes the exponent by `step` (-1 behind the point).
    size_t ReadDigits(std::u16string_view text, size_t position, int step)
    {
        for (; position < text.size() && IsDigit(text[position]); ++position)
        {
            hasDigits = true;
            const char digit = static_cast<char>(text[position]);
            exponent += step;
            if (digitCount == 0 && digit == '0')
                continue;
            if (digitCount < MaxDigits)
            {
                digits[digitCount++] = digit;
                continue;
            }
            droppedNonZero = droppedNonZero || digit != '0';
            ++exponent;
        }
        return position;
    }

    bool ReadExponent(std::u16string_view text)
    {
        if (text.front() != u'e' && text.front() != u'E')
            return false;
        text.remove_prefix(1);
        const bool negative = TakeSign(text);
        if (text.empty())
            return false;
        long long written = 0;
        for (const UniChar unit : text)
        {
            if (!IsDigit(unit))
                return false;
            // A text of fewer than 10^17 digits cannot bring a larger exponent back into range.
            if (written < 100'000'000'000'000'000)
                written = written * 10 + (unit - u'0');
        }
        exponent += negative ? -written : written;
        return true;
    }

    char digits[MaxDigits + 32];
    size_t digitCount = 0;
    long long exponent = 0;
    bool hasDigits = false;
    bool droppedNonZero = false;
};

template <std::floating_point Float>
bool Parse(std::u16string_view text, Float& value)
{
    const bool negative = TakeSign(text);
    DecimalText decimal;
    return decimal.Read(text) && decimal.ToValue(negative, value);
}

template <class T>
bool Format(T value, UniChar* buffer, size_t bufferLength)
{
    if constexpr (std::is_floating_point_v<T>)
        if (!std::isfinite(value))
            return false;
    char digits[64] = {};
    const char* end = std::to_chars(digits, std::end(digits), value).ptr;
    if (static_cast<size_t>(end - digits) >= bufferLength)
        return false;
    *std::copy(digits, digits + (end - digits), buffer) = u'\0';
    return true;
}

} // namespace

#define NUV_DEFINE_VALUE_TEXT(Type)                                                                          \
    bool strtovalue(std::u16string_view text, Type& value, ToValueMode, TrimWSMode)                          \
    {                                                                                                        \
        return Parse(Trimmed(text), value);                                                                  \
    }                                                                                                        \
    bool valuetostr(Type value, UniChar* buffer, size_t bufferLength)                                        \
    {                                                                                                        \
        return Format(value, buffer, bufferLength);                                                          \
    }

NUV_FOR_EACH_NUMBER_TYPE(NUV_DEFINE_VALUE_TEXT)
#undef NUV_DEFINE_VALUE_TEXT

} // namespace Nuv
