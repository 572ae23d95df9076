#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"

#include <cmath>
#include <limits>
#include <random>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;

/// The value as text, or the message of the failure after an exclamation mark.
template <class Parse>
std::string Outcome(Parse parse, const char* text)
{
    try
    {
        return std::to_string(parse(text));
    }
    catch (const ConvException& exception)
    {
        EXPECT_EQ(exception.line, 0u);
        return "!" + exception.message.ToUTF8();
    }
}

TEST(GetIntNum, ReadsDecimalDigitsUpToTheLargestNumber)
{
    EXPECT_EQ(Outcome(GetIntNum, "0"), "0");
    EXPECT_EQ(Outcome(GetIntNum, "0042"), "42");
    EXPECT_EQ(Outcome(GetIntNum, "4294967295"), "4294967295");
    EXPECT_EQ(Outcome(GetIntNum, "00000000004294967295"), "4294967295");
}

TEST(GetIntNum, FailsAboveTheLargestNumber)
{
    for (const char* text : {"4294967296", "4294967300", "9999999999", "42949672950", "18446744073709551616"})
        EXPECT_EQ(Outcome(GetIntNum, text), "!Integer Overflow") << text;
}

TEST(GetIntNum, FailsAtAnythingButADigit)
{
    for (const char* text : {"12a", " 1", "1 ", "+1", "-1", "0x1", "1.0", "1,000", "\xD9\xA1", "/", ":"})
        EXPECT_EQ(Outcome(GetIntNum, text), "!Too many data") << text;
}

TEST(GetIntNum, FailsAtTheFirstFault)
{
    EXPECT_EQ(Outcome(GetIntNum, "4294967296a"), "!Integer Overflow");
    EXPECT_EQ(Outcome(GetIntNum, "429496729a6"), "!Too many data");
}

TEST(GetIntNum, FailsWithoutAMessageForAnEmptyText) { EXPECT_EQ(Outcome(GetIntNum, ""), "!"); }

TEST(GetSignedLong, ReadsTheWholeRange)
{
    EXPECT_EQ(Outcome(GetSignedLong, "-2147483648"), "-2147483648");
    EXPECT_EQ(Outcome(GetSignedLong, "2147483647"), "2147483647");
    EXPECT_EQ(Outcome(GetSignedLong, "+2147483647"), "2147483647");
    EXPECT_EQ(Outcome(GetSignedLong, "-0"), "0");
    EXPECT_EQ(Outcome(GetSignedLong, "-17"), "-17");
}

TEST(GetSignedLong, FailsOutsideTheRange)
{
    EXPECT_EQ(Outcome(GetSignedLong, "-2147483649"), "!Integer Underflow");
    EXPECT_EQ(Outcome(GetSignedLong, "-4294967295"), "!Integer Underflow");
    EXPECT_EQ(Outcome(GetSignedLong, "-4294967296"), "!Integer Overflow");
    EXPECT_EQ(Outcome(GetSignedLong, "2147483648"), "!Integer Overflow");
    EXPECT_EQ(Outcome(GetSignedLong, "+2147483648"), "!Integer Overflow");
}

TEST(GetSignedLong, FailsForSignsThatLackANumber)
{
    for (const char* text : {"", "+", "-"})
        EXPECT_EQ(Outcome(GetSignedLong, text), "!") << text;
    for (const char* text : {"--1", "+-1", "- 1", " -1", "-1 "})
        EXPECT_EQ(Outcome(GetSignedLong, text), "!Too many data") << text;
}

TEST(GetULong, ReadsAfterOnePlus)
{
    EXPECT_EQ(Outcome(GetULong, "+4294967295"), "4294967295");
    EXPECT_EQ(Outcome(GetULong, "7"), "7");
    EXPECT_EQ(Outcome(GetULong, "-1"), "!Too many data");
    EXPECT_EQ(Outcome(GetULong, "++1"), "!Too many data");
    EXPECT_EQ(Outcome(GetULong, "4294967296"), "!Integer Overflow");
    EXPECT_EQ(Outcome(GetULong, "+"), "!");
    EXPECT_EQ(Outcome(GetULong, ""), "!");
}

TEST(IntegerParsers, ReadEveryGeneratedNumber)
{
    std::mt19937 random(7);
    for (int i = 0; i < 100'000; ++i)
    {
        const auto number = static_cast<unsigned int>(random()) >> (random() % 32);
        ASSERT_EQ(GetIntNum(std::to_string(number).c_str()), number);
        ASSERT_EQ(GetULong(std::to_string(number).c_str()), number);
        const int signedNumber = static_cast<int>(number);
        ASSERT_EQ(GetSignedLong(std::to_string(signedNumber).c_str()), signedNumber);
    }
}

TEST(GetDouble, ReadsTheNotationsOfTheCLibrary)
{
    EXPECT_EQ(GetDouble("1.5"), 1.5);
    EXPECT_EQ(GetDouble(" \t\n\v\f\r-1.5e+003"), -1500.0);
    EXPECT_EQ(GetDouble("+.5"), 0.5);
    EXPECT_EQ(GetDouble("5."), 5.0);
    EXPECT_EQ(GetDouble("1E2"), 100.0);
    EXPECT_EQ(GetDouble("0x1.8p1"), 3.0);
    EXPECT_TRUE(std::isinf(GetDouble("-INF")));
    EXPECT_TRUE(std::isnan(GetDouble("nan")));
}

TEST(GetDouble, ReadsZeroAlsoWhereTheNumberIsTooSmallForAnyOther)
{
    EXPECT_EQ(GetDouble("0"), 0.0);
    EXPECT_EQ(GetDouble("1e-999"), 0.0);
    EXPECT_EQ(ConvMessageOf([] { GetDouble("0 "); }), "Too many data");
    EXPECT_EQ(ConvMessageOf([] { GetDouble("1e-999x"); }), "Too many data");
}

TEST(GetDouble, ReadsZeroWithoutASign)
{
    for (const char* text : {"-0", "-0.0", "-0e5", "-0x0", "-1e-999", " -0"})
    {
        EXPECT_EQ(GetDouble(text), 0.0) << text;
        EXPECT_FALSE(std::signbit(GetDouble(text))) << text;
    }
}

TEST(GetDouble, FailsWhereNoNumberStarts)
{
    for (const char* text : {"", "abc", " ", "+", ".", "e5", ",5"})
        EXPECT_EQ(ConvMessageOf([&] { GetDouble(text); }), "Floating point number error") << text;
}

TEST(GetDouble, FailsOutsideTheRangeAndForDenormals)
{
    for (const char* text : {"1e999", "-1e999", "1e999x", "4.9e-324", "2e-308"})
        EXPECT_EQ(ConvMessageOf([&] { GetDouble(text); }), "Floating point number error") << text;
    EXPECT_EQ(GetDouble("0x1p-1074"), std::numeric_limits<double>::denorm_min()) << "nothing is rounded";
    EXPECT_EQ(GetDouble("2.2250738585072014e-308"), std::numeric_limits<double>::min());
    EXPECT_EQ(GetDouble("1.7976931348623157e308"), std::numeric_limits<double>::max());
}

TEST(GetDouble, FailsWhereAnythingFollows)
{
    for (const char* text : {"1.5 ", "1,5", "1.5.5", "1e", "1x", "12a"})
        EXPECT_EQ(ConvMessageOf([&] { GetDouble(text); }), "Too many data") << text;
}

} // namespace
