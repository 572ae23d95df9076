#include "NuvRoot/ValueText.hpp"

#include "tests/support/CommaLocale.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace std::string_view_literals;
using Nuv::strtovalue;
using Nuv::UniString;
using Nuv::valuetostr;

/// What is read, or nothing on failure, which must leave the value as it was.
template <class T>
std::optional<T> Read(std::u16string_view text)
{
    T value = 42;
    if (strtovalue(text, value))
        return value;
    EXPECT_EQ(value, static_cast<T>(42)) << UniString(text);
    return std::nullopt;
}

template <class T>
std::u16string Written(T value)
{
    char16_t buffer[64];
    EXPECT_TRUE(valuetostr(value, buffer, std::size(buffer)));
    return buffer;
}

std::u16string Widened(const std::string& text) { return std::u16string(text.begin(), text.end()); }

/// Wide enough for the bounds of every type and for what lies beyond them.
__extension__ typedef __int128 WideInteger;

std::u16string Decimal(WideInteger value)
{
    std::u16string reversed;
    WideInteger rest = value < 0 ? -value : value;
    for (; rest != 0 || reversed.empty(); rest /= 10)
        reversed += static_cast<char16_t>(u'0' + rest % 10);
    if (value < 0)
        reversed += u'-';
    return std::u16string(reversed.rbegin(), reversed.rend());
}

// Integers.

template <class T>
class IntegerText : public testing::Test
{
  protected:
    static constexpr T Lowest = std::numeric_limits<T>::lowest();
    static constexpr T Highest = std::numeric_limits<T>::max();
};
using IntegerTypes = testing::Types<char, signed char, unsigned char, short, unsigned short, int,
                                    unsigned int, long, unsigned long, long long, unsigned long long>;
TYPED_TEST_SUITE(IntegerText, IntegerTypes);

TYPED_TEST(IntegerText, IsReadAndWrittenUpToTheBounds)
{
    EXPECT_EQ(Read<TypeParam>(Decimal(this->Lowest)), this->Lowest);
    EXPECT_EQ(Read<TypeParam>(Decimal(this->Highest)), this->Highest);
    EXPECT_EQ(Written(this->Lowest), Decimal(this->Lowest));
    EXPECT_EQ(Written(this->Highest), Decimal(this->Highest));
    EXPECT_EQ(Written(TypeParam{0}), u"0");
}

TYPED_TEST(IntegerText, FailsBeyondTheBounds)
{
    const WideInteger lowest = this->Lowest;
    const WideInteger highest = this->Highest;
    EXPECT_EQ(Read<TypeParam>(Decimal(lowest - 1)), std::nullopt);
    EXPECT_EQ(Read<TypeParam>(Decimal(highest + 1)), std::nullopt);
    EXPECT_EQ(Read<TypeParam>(Decimal(highest) + u"0"), std::nullopt);
    EXPECT_EQ(Read<TypeParam>(std::u16string(100, u'9')), std::nullopt);
    EXPECT_EQ(Read<TypeParam>(std::u16string(u"-").append(100, u'9')), std::nullopt);
}

TYPED_TEST(IntegerText, TakesASign)
{
    EXPECT_EQ(Read<TypeParam>(u"+1"), TypeParam{1});
    EXPECT_EQ(Read<TypeParam>(u"+0"), TypeParam{0});
    if constexpr (std::is_signed_v<TypeParam>)
    {
        EXPECT_EQ(Read<TypeParam>(u"-1"), static_cast<TypeParam>(-1));
        EXPECT_EQ(Read<TypeParam>(u"-0"), TypeParam{0});
    }
    else
    {
        EXPECT_EQ(Read<TypeParam>(u"-1"), std::nullopt);
        EXPECT_EQ(Read<TypeParam>(u"-0"), std::nullopt);
    }
}

TYPED_TEST(IntegerText, MayHaveWhiteSpaceAroundAndLeadingZeros)
{
    EXPECT_EQ(Read<TypeParam>(u" 1"), TypeParam{1});
    EXPECT_EQ(Read<TypeParam>(u"1\t\r\n"), TypeParam{1});
    EXPECT_EQ(Read<TypeParam>(u"\u00A0\u2003\u3000+17\u2028\u0085"), TypeParam{17});
    EXPECT_EQ(Read<TypeParam>(std::u16string(1000, u'0').append(u"17")), TypeParam{17});
}

TYPED_TEST(IntegerText, FailsOnAnythingElse)
{
    for (const std::u16string_view text :
         {u""sv,       u" "sv,      u"+"sv,   u"-"sv,     u"++1"sv,     u"--1"sv,     u"+-1"sv,
          u"-+1"sv,    u"+ 1"sv,    u"1 2"sv, u"1x"sv,    u"x1"sv,      u"1-"sv,      u"0x1"sv,
          u"1.0"sv,    u"1."sv,     u"1e1"sv, u"1,000"sv, u"1_0"sv,     u"#1"sv,      u"\uFF11"sv,
          u"\u0661"sv, u"\u00B2"sv, u"1\0"sv, u"true"sv,  u"\u200B1"sv, u"1\uFEFF"sv, u"\u22121"sv,
          u"inf"sv,    u"nan"sv,    u"1u"sv,  u"1L"sv})
        EXPECT_EQ(Read<TypeParam>(text), std::nullopt) << UniString(text);
}

TYPED_TEST(IntegerText, LeavesABufferThatIsTooSmall)
{
    const std::u16string text = Decimal(this->Lowest);
    for (size_t length = 0; length <= text.size(); ++length)
    {
        std::u16string buffer(40, u'x');
        EXPECT_FALSE(valuetostr(this->Lowest, buffer.data(), length));
        EXPECT_EQ(buffer, std::u16string(40, u'x'));
    }
    std::u16string buffer(40, u'x');
    EXPECT_TRUE(valuetostr(this->Lowest, buffer.data(), text.size() + 1));
    EXPECT_EQ(buffer.substr(0, text.size() + 1), text + u'\0');
    EXPECT_EQ(buffer.substr(text.size() + 1), std::u16string(39 - text.size(), u'x'));
    EXPECT_FALSE(valuetostr(this->Lowest, nullptr, 0));
}

TYPED_TEST(IntegerText, ReadsBackGeneratedValues)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 10000; ++i)
    {
        const auto value = static_cast<TypeParam>(random() >> (random() % 64));
        ASSERT_EQ(Read<TypeParam>(Written(value)), value);
    }
}

TEST(ValueText, IsReadFromZeroTerminatedTextToo)
{
    int value = 42;
    EXPECT_TRUE(strtovalue(u" 17 ", value, 0, 0));
    EXPECT_EQ(value, 17);
    EXPECT_TRUE(strtovalue(UniString(u"18").ToUTF16(), value));
    EXPECT_EQ(value, 18);
    EXPECT_FALSE(strtovalue(static_cast<const char16_t*>(nullptr), value));
    EXPECT_FALSE(strtovalue(std::u16string_view(), value));
    EXPECT_EQ(value, 18);
}

// Floating-point numbers.

template <class T>
class FloatText : public testing::Test
{
  protected:
    /// strtod or strtof, which the process's "C" locale makes comparable.
    static T Oracle(const std::string& text)
    {
        if constexpr (std::is_same_v<T, float>)
            return std::strtof(text.c_str(), nullptr);
        else
            return std::strtod(text.c_str(), nullptr);
    }

    static void ExpectAsOracle(const std::string& text)
    {
        const T expected = Oracle(text);
        const std::optional<T> read = Read<T>(Widened(text));
        EXPECT_EQ(read, std::isinf(expected) ? std::nullopt : std::optional<T>(expected))
            << text.substr(0, 100);
    }

    static T Generated(std::mt19937_64& random)
    {
        using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
        return std::bit_cast<T>(static_cast<Bits>(random()));
    }
};
using FloatTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(FloatText, FloatTypes);

TYPED_TEST(FloatText, IsReadInEveryDecimalNotation)
{
    for (const std::u16string_view text :
         {u"1.5"sv, u"+1.5"sv, u"01.50"sv, u"15e-1"sv, u"0.15E1"sv, u".15e+1"sv, u"1.5e0"sv,
          u"\u2003 1.5\t"sv, u"150.e-2"sv, u"1.5e-0000"sv})
        EXPECT_EQ(Read<TypeParam>(text), TypeParam(1.5)) << UniString(text);
    EXPECT_EQ(Read<TypeParam>(u"-1.5"), TypeParam(-1.5));
    EXPECT_EQ(Read<TypeParam>(u".5"), TypeParam(0.5));
    EXPECT_EQ(Read<TypeParam>(u"5."), TypeParam(5));
    EXPECT_EQ(Read<TypeParam>(u"0e999999999999999999999"), TypeParam(0));
}

TYPED_TEST(FloatText, KeepsTheSignOfZero)
{
    EXPECT_FALSE(std::signbit(Read<TypeParam>(u"0").value()));
    EXPECT_TRUE(std::signbit(Read<TypeParam>(u"-0").value()));
    EXPECT_TRUE(std::signbit(Read<TypeParam>(u"-1e-999999").value()));
    EXPECT_EQ(Written(TypeParam(-0.0)), u"-0");
}

TYPED_TEST(FloatText, FailsOnAnythingElse)
{
    for (const std::u16string_view text :
         {u""sv,      u" "sv,    u"."sv,      u"+"sv,        u"-."sv,     u"e1"sv,   u".e1"sv,
          u"1e"sv,    u"1e+"sv,  u"1e+-1"sv,  u"++1"sv,      u"--1"sv,    u"+-1"sv,  u"-+1"sv,
          u"- 1"sv,   u"1 e1"sv, u"1.5.1"sv,  u"1,5"sv,      u"1.5x"sv,   u"1.5f"sv, u"1.5 1"sv,
          u"1e1.5"sv, u"1d1"sv,  u"\uFF11"sv, u"1.\uFF15"sv, u"\u0661"sv, u"1\0"sv,  u"1\uFEFF"sv})
        EXPECT_EQ(Read<TypeParam>(text), std::nullopt) << UniString(text);
}

TYPED_TEST(FloatText, FailsOnHexadecimalAndOnWhatIsNoNumber)
{
    for (const std::u16string_view text :
         {u"0x1"sv,    u"0X1P3"sv,    u"0x"sv,       u"inf"sv,    u"INF"sv,    u"Inf"sv,    u"-inf"sv,
          u"+inf"sv,   u"infinity"sv, u"INFINITY"sv, u"nan"sv,    u"NaN"sv,    u"NAN"sv,    u"-nan"sv,
          u"nan(1)"sv, u"nan()"sv,    u" inf "sv,    u"\u221E"sv, u"1.#INF"sv, u"1.#QNAN"sv})
        EXPECT_EQ(Read<TypeParam>(text), std::nullopt) << UniString(text);
}

TYPED_TEST(FloatText, IsReadUpToTheBounds)
{
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam value :
         {Limits::max(), Limits::lowest(), Limits::min(), Limits::denorm_min(), Limits::epsilon()})
        EXPECT_EQ(Read<TypeParam>(Written(value)), value);
}

TYPED_TEST(FloatText, FailsBeyondTheBounds)
{
    for (const std::u16string_view text :
         {u"1e309"sv, u"-1e309"sv, u"1.8e308"sv, u"1e999999999999999999999"sv})
        EXPECT_EQ(Read<TypeParam>(text), std::nullopt) << UniString(text);
    EXPECT_EQ(Read<TypeParam>(std::u16string(400, u'9')), std::nullopt);
}

TEST(ValueText, RoundsAtTheBoundsOfDouble)
{
    EXPECT_EQ(Read<double>(u"1.7976931348623157e308"), 1.7976931348623157e308);
    EXPECT_EQ(Read<double>(u"1.7976931348623158e308"), 1.7976931348623157e308) << "nearer than half a unit";
    EXPECT_EQ(Read<double>(u"1.7976931348623159e308"), std::nullopt);
    EXPECT_EQ(Read<double>(u"5e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(Read<double>(u"2.5e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(Read<double>(u"2.4e-324"), 0.0) << "less than half the least value";
    EXPECT_EQ(Read<double>(u"1e-999999999999999999999"), 0.0);
}

TEST(ValueText, RoundsAtTheBoundsOfFloat)
{
    EXPECT_EQ(Read<float>(u"3.4028235e38"), std::numeric_limits<float>::max());
    EXPECT_EQ(Read<float>(u"3.4028236e38"), std::nullopt);
    EXPECT_EQ(Read<float>(u"1e-45"), std::numeric_limits<float>::denorm_min());
    EXPECT_EQ(Read<float>(u"0.7e-45"), 0.0f) << "less than half the least value";
    EXPECT_EQ(Read<float>(u"16777217"), 16777216.0f) << "half-way, to the even neighbour";
    EXPECT_EQ(Read<float>(u"16777217.00000000000000000001"), 16777218.0f);
}

TYPED_TEST(FloatText, ReadsVeryLongTextAsStrtodDoes)
{
    const std::string digits(10000, '7');
    const std::string zeros(10000, '0');
    for (const std::string& text :
         {digits + "e-9990", "0." + digits, "0." + zeros + digits, "0." + zeros + digits + "e10005",
          "1." + zeros + "1", zeros + "1.5", digits, digits + "e-10400", "1" + zeros + "e-10000",
          "0." + zeros + "1e10001", "9007199254740993." + zeros + "1", "9007199254740993." + zeros,
          "9007199254740993" + zeros + "1e-10001"})
        this->ExpectAsOracle(text);
}

/// The exact decimal text of the point half-way between a value and the next one above it.
std::string HalfWay(double value)
{
    const long double middle =
        (static_cast<long double>(value) + std::nextafter(value, std::numeric_limits<double>::infinity())) /
        2;
    char text[2000];
    std::snprintf(text, sizeof text, "%.1100Lf", middle);
    return text;
}

TEST(ValueText, DecidesHalfWayCasesByTheirVeryLastDigit)
{
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> anyExponent(-1020, 50);
    for (int i = 0; i < 300; ++i)
    {
        const double value = std::exp2(anyExponent(random));
        const std::string text = HalfWay(value);
        for (const char* lastDigits : {"", "1", "0000001"})
        {
            const std::string exact = text + lastDigits;
            ASSERT_EQ(Read<double>(Widened(exact)), std::strtod(exact.c_str(), nullptr)) << exact;
        }
    }
}

TYPED_TEST(FloatText, ReadsGeneratedTextAsStrtodDoes)
{
    std::mt19937_64 random(11);
    for (int i = 0; i < 20000; ++i)
    {
        std::string text = std::to_string(random());
        text.insert(random() % (text.size() + 1), 1, '.');
        text.append("e").append(std::to_string(static_cast<int>(random() % 700) - 350));
        this->ExpectAsOracle(text);
    }
}

TYPED_TEST(FloatText, ReadsBackGeneratedValuesBitByBit)
{
    std::mt19937_64 random(13);
    for (int i = 0; i < 20000; ++i)
    {
        const TypeParam value = this->Generated(random);
        if (!std::isfinite(value))
            continue;
        const std::optional<TypeParam> read = Read<TypeParam>(Written(value));
        ASSERT_EQ(read, value);
        ASSERT_EQ(std::signbit(*read), std::signbit(value));
    }
}

TYPED_TEST(FloatText, IsWrittenAsTheShortestText)
{
    EXPECT_EQ(Written(TypeParam(0.1)), u"0.1");
    EXPECT_EQ(Written(TypeParam(-1.5)), u"-1.5");
    EXPECT_EQ(Written(TypeParam(100)), u"100");
    EXPECT_EQ(Written(TypeParam(1e30)), u"1e+30");
}

TYPED_TEST(FloatText, IsNotWrittenWhereThereIsNoneOrNoRoom)
{
    using Limits = std::numeric_limits<TypeParam>;
    std::u16string buffer(5, u'x');
    for (const TypeParam value : {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_FALSE(valuetostr(value, buffer.data(), buffer.size()));
    EXPECT_FALSE(valuetostr(TypeParam(-1.25), buffer.data(), 5));
    EXPECT_EQ(buffer, u"xxxxx");
    EXPECT_TRUE(valuetostr(TypeParam(1.25), buffer.data(), 5));
    EXPECT_EQ(buffer, u"1.25\0"sv);
}

TEST(ValueText, HasADecimalPointInEveryLocale)
{
    const NuvTest::CommaLocale locale;
    char printed[10];
    std::snprintf(printed, sizeof printed, "%.1f", 0.5);
    ASSERT_STREQ(printed, "0,5") << "the locale is in force";
    EXPECT_EQ(Read<double>(u"0.5"), 0.5);
    EXPECT_EQ(Read<float>(u"0.5"), 0.5f);
    EXPECT_EQ(Read<double>(u"0,5"), std::nullopt);
    EXPECT_EQ(Written(0.5), u"0.5");
    EXPECT_EQ(Written(0.5f), u"0.5");
    EXPECT_EQ(Written(1234567), u"1234567");
}

} // namespace
