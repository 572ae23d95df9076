#include "NuvRoot/Exceptions.hpp"
#include "NuvRoot/UniString.hpp"
#include "tests/support/CommaLocale.hpp"
#include "tests/support/LocalCodePageScope.hpp"
#include "tests/support/RepeatedText.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <vector>

namespace
{

using namespace std::string_literals;
using namespace std::string_view_literals;
using Nuv::CC_Default;
using Nuv::CC_UTF8;
using Nuv::UniString;
using NuvTest::LocalCodePageScope;

std::u16string Decode(std::string_view bytes, Nuv::NuvCharCode code = CC_Default)
{
    std::u16string units(bytes.size() * 4, u'\0');
    units.resize(static_cast<size_t>(CHANSI2Unicode(bytes.data(), static_cast<int>(bytes.size()),
                                                    units.data(), static_cast<int>(units.size()), code)));
    return units;
}

std::string Encode(std::u16string_view units, bool lossy, Nuv::NuvCharCode code = CC_Default)
{
    std::string bytes(units.size() * 8, '\0');
    bytes.resize(
        static_cast<size_t>(CHUnicode2ANSI(units.data(), static_cast<int>(units.size()), bytes.data(),
                                           static_cast<int>(bytes.size()), code, lossy)));
    return bytes;
}

/// Empty when a character would be lost.
std::string EncodeStrictly(std::u16string_view units, Nuv::NuvCharCode code = CC_Default)
{
    return Encode(units, false, code);
}

std::string EncodeLossily(std::u16string_view units, Nuv::NuvCharCode code = CC_Default)
{
    return Encode(units, true, code);
}

// The local code page.

TEST(LocalCodePage, IsChangedByItsName)
{
    const LocalCodePageScope scope("windows-1252");
    EXPECT_STREQ(Nuv::GetLocalCodePage(), "windows-1252");
    Nuv::SetLocalCodePage("ISO-8859-1");
    EXPECT_STREQ(Nuv::GetLocalCodePage(), "ISO-8859-1");
    Nuv::SetLocalCodePage(Nuv::GetLocalCodePage());
    EXPECT_STREQ(Nuv::GetLocalCodePage(), "ISO-8859-1");
}

TEST(LocalCodePage, StaysAsItIsWhenANameIsUnknown)
{
    const LocalCodePageScope scope("windows-1252");
    for (const char* name : {"no such code page", "", static_cast<const char*>(nullptr)})
        EXPECT_THROW(Nuv::SetLocalCodePage(name), Nuv::GeneralException);
    EXPECT_STREQ(Nuv::GetLocalCodePage(), "windows-1252");
    EXPECT_EQ(UniString("\x80"), u"\u20AC");
}

/// What a fresh process with these settings before its command line prints. No leak is looked for in it: the
/// C library itself never frees what it makes of LOCPATH.
std::string PrintedIn(const std::string& settings)
{
    const std::string command = "env -u LC_ALL -u LC_CTYPE -u LANG ASAN_OPTIONS=detect_leaks=0 " + settings +
                                " '" PRINT_LOCAL_CODE_PAGE "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    std::array<char, 100> line{};
    return output && std::fgets(line.data(), static_cast<int>(line.size()), output.get()) ? line.data() : "";
}

TEST(LocalCodePage, IsTheCodeSetOfTheEnvironment)
{
    const NuvTest::GeneratedLocale locale;
    EXPECT_EQ(PrintedIn("LOCPATH='" + locale.Folder() + "' LC_ALL=de_DE"), "ISO-8859-1 E4");
    EXPECT_EQ(PrintedIn("LOCPATH='" + locale.Folder() + "' LANG=de_DE"), "ISO-8859-1 E4");
}

TEST(LocalCodePage, IsUTF8WhereTheEnvironmentTellsNoneOrPlainASCII)
{
    EXPECT_EQ(PrintedIn(""), "UTF-8");
    EXPECT_EQ(PrintedIn("LC_ALL=C"), "UTF-8");
    EXPECT_EQ(PrintedIn("LC_ALL=C.UTF-8"), "UTF-8");
    EXPECT_EQ(PrintedIn("LC_ALL=no_SUCH.locale"), "UTF-8");
}

// Counting and room, the same for both converters.

TEST(CHANSI2Unicode, CountsWithoutABuffer)
{
    char16_t unit = u'x';
    EXPECT_EQ(CHANSI2Unicode("a\xC3\xA4z", 4, nullptr, 100, CC_UTF8), 3);
    EXPECT_EQ(CHANSI2Unicode("a\xC3\xA4z", 4, &unit, 0, CC_UTF8), 3);
    EXPECT_EQ(CHANSI2Unicode("abc", 3, &unit, 0, CC_UTF8), 3);
    EXPECT_EQ(unit, u'x');
}

TEST(CHANSI2Unicode, CountsTheTerminatorOfZeroTerminatedText)
{
    char16_t units[] = u"xxxxx";
    EXPECT_EQ(CHANSI2Unicode("\xC3\xA4z", -1, nullptr, 0, CC_UTF8), 3);
    EXPECT_EQ(CHANSI2Unicode("\xC3\xA4z", -1, units, 5, CC_UTF8), 3);
    EXPECT_EQ(std::u16string_view(units, 5), u"\u00E4z\0xx"sv);
    EXPECT_EQ(CHANSI2Unicode("", -1, units, 5, CC_UTF8), 1);
}

TEST(CHANSI2Unicode, FailsWithoutTextOrRoom)
{
    char16_t units[] = u"xx";
    EXPECT_EQ(CHANSI2Unicode(nullptr, 0, units, 2, CC_UTF8), 0);
    EXPECT_EQ(CHANSI2Unicode(nullptr, -1, nullptr, 0, CC_UTF8), 0);
    EXPECT_EQ(CHANSI2Unicode("abc", 3, units, 2, CC_UTF8), 0);
    EXPECT_EQ(CHANSI2Unicode("\xC3\xA4yz", 4, units, 2, CC_UTF8), 0);
    EXPECT_EQ(CHANSI2Unicode("abc", 3, units, -1, CC_UTF8), 0);
    EXPECT_EQ(CHANSI2Unicode("", 0, units, 2, CC_UTF8), 0);
    EXPECT_EQ(std::u16string_view(units), u"xx");
    EXPECT_EQ(CHANSI2Unicode("ab", 2, units, 2, CC_UTF8), 2) << "room for exactly the text is enough";
}

TEST(CHUnicode2ANSI, CountsWithoutABuffer)
{
    char byte = 'x';
    EXPECT_EQ(CHUnicode2ANSI(u"a\u20ACz", 3, nullptr, 100, CC_UTF8, false), 5);
    EXPECT_EQ(CHUnicode2ANSI(u"a\u20ACz", 3, &byte, 0, CC_UTF8, true), 5);
    EXPECT_EQ(byte, 'x');
}

TEST(CHUnicode2ANSI, CountsTheTerminatorOfZeroTerminatedText)
{
    char bytes[] = "xxxxx";
    EXPECT_EQ(CHUnicode2ANSI(u"\u20AC", -1, nullptr, 0, CC_UTF8, false), 4);
    EXPECT_EQ(CHUnicode2ANSI(u"\u20AC", -1, bytes, 5, CC_UTF8, false), 4);
    EXPECT_EQ(std::string_view(bytes, 5), "\xE2\x82\xAC\0x"sv);
    EXPECT_EQ(CHUnicode2ANSI(u"", -1, bytes, 5, CC_UTF8, false), 1);
    const LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(CHUnicode2ANSI(u"\u20AC", -1, bytes, 5, CC_Default, false), 2);
    EXPECT_EQ(std::string_view(bytes, 3), "\x80\0\xAC"sv);
}

TEST(CHUnicode2ANSI, FailsWithoutTextOrRoom)
{
    char bytes[] = "xx";
    EXPECT_EQ(CHUnicode2ANSI(nullptr, 0, bytes, 2, CC_UTF8, true), 0);
    EXPECT_EQ(CHUnicode2ANSI(nullptr, -1, nullptr, 0, CC_UTF8, true), 0);
    EXPECT_EQ(CHUnicode2ANSI(u"abc", 3, bytes, 2, CC_UTF8, true), 0);
    EXPECT_EQ(CHUnicode2ANSI(u"\u20AC", 1, bytes, 2, CC_UTF8, true), 0);
    EXPECT_EQ(CHUnicode2ANSI(u"abc", 3, bytes, -1, CC_UTF8, true), 0);
    EXPECT_EQ(CHUnicode2ANSI(u"", 0, bytes, 2, CC_UTF8, true), 0);
    EXPECT_STREQ(bytes, "xx");
    EXPECT_EQ(CHUnicode2ANSI(u"ab", 2, bytes, 2, CC_UTF8, true), 2) << "room for exactly the text is enough";
}

// UTF-8.

TEST(UTF8, EncodesEveryCharacterAndDecodesItBack)
{
    for (char32_t character = 0; character <= 0x10FFFF; character += character < 0x3000 ? 1 : 37)
    {
        if (character >= 0xD800 && character <= 0xDFFF)
            continue;
        std::u16string text(u"x");
        if (character >= 0x10000)
            text += static_cast<char16_t>(0xD7C0 + (character >> 10));
        text += static_cast<char16_t>(character < 0x10000 ? character : 0xDC00 + (character & 0x3FF));
        const std::string bytes = EncodeStrictly(text, CC_UTF8);
        ASSERT_EQ(Decode(bytes, CC_UTF8), text) << static_cast<unsigned>(character);
    }
}

TEST(UTF8, LosesHalfASurrogatePair)
{
    const std::u16string text{u'a', 0xD83D, u'z'};
    EXPECT_EQ(EncodeStrictly(text, CC_UTF8), "");
    EXPECT_EQ(EncodeLossily(text, CC_UTF8), "a?z");
    EXPECT_EQ(EncodeLossily(std::u16string{0xDE00, 0xD83D}, CC_UTF8), "??");
}

TEST(UTF8, IsAllowedAsLocalCodePage)
{
    const LocalCodePageScope scope("UTF-8");
    EXPECT_EQ(EncodeStrictly(u"\u20AC\U0001F600"), "\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(EncodeStrictly(std::u16string{0xD83D}), "");
    EXPECT_EQ(EncodeLossily(std::u16string{0xD83D}), "?");
    EXPECT_EQ(Decode("\xE2\x82\xAC"), u"\u20AC");
}

TEST(UTF8, DecodesIllFormedBytesToReplacementCharacters)
{
    EXPECT_EQ(Decode("\x80", CC_UTF8), u"\uFFFD");
    EXPECT_EQ(Decode("\xC0\x80", CC_UTF8), u"\uFFFD\uFFFD") << "overlong";
    EXPECT_EQ(Decode("a\xE2\x82z", CC_UTF8), u"a\uFFFDz") << "truncated";
    EXPECT_EQ(Decode("\xF4\x90\x80\x80", CC_UTF8), u"\uFFFD\uFFFD\uFFFD\uFFFD") << "beyond U+10FFFF";
}

// Single-byte code pages.

TEST(Windows1252, HasTheEuroSign)
{
    const LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(EncodeStrictly(u"\u20AC\u0160\u00E4\u00FF"), "\x80\x8A\xE4\xFF");
    EXPECT_EQ(Decode("\x80\x8A\xE4\xFF"), u"\u20AC\u0160\u00E4\u00FF");
}

TEST(ISO88591, HasTheFirst256Characters)
{
    const LocalCodePageScope scope("ISO-8859-1");
    for (int code = 0; code < 256; ++code)
    {
        const std::string byte(1, static_cast<char>(code));
        const std::u16string unit(1, static_cast<char16_t>(code));
        EXPECT_EQ(Decode(byte), unit);
        EXPECT_EQ(EncodeStrictly(unit), byte);
    }
    EXPECT_EQ(EncodeStrictly(u"\u20AC"), "");
    EXPECT_EQ(EncodeLossily(u"\u20AC"), "?");
}

class StrictCodePage : public testing::TestWithParam<const char*>
{
};

TEST_P(StrictCodePage, BringsEveryCharacterBackOrFailsOrWritesAQuestionMark)
{
    const LocalCodePageScope scope(GetParam());
    const std::u16string questionMark = u"a?z";
    for (unsigned code = 1; code < 0x10000; ++code)
    {
        const std::u16string text{u'a', static_cast<char16_t>(code), u'z'};
        const std::string strict = EncodeStrictly(text);
        const std::u16string lossy = Decode(EncodeLossily(text));
        ASSERT_TRUE(strict.empty() || Decode(strict) == text) << std::hex << code;
        ASSERT_EQ(lossy, strict.empty() ? questionMark : text) << std::hex << code;
    }
}

INSTANTIATE_TEST_SUITE_P(CodePages, StrictCodePage,
                         testing::Values("windows-1252", "ISO-8859-1", "ISO-8859-15", "US-ASCII", "ibm-437",
                                         "Shift_JIS", "EUC-JP", "GB18030", "Big5", "ISO-2022-JP", "ibm-37",
                                         "UTF-7", "UTF-16"));

TEST(StrictConversion, FailsOnCharactersThatConvertersReplaceOrDrop)
{
    const LocalCodePageScope scope("windows-1252");
    for (const std::u16string_view text : {u"\uFF21"sv, u"\u200B"sv, u"\u00AD\u200B"sv, u"\uFEFF"sv,
                                           u"\u2060"sv, u"\U000E0001"sv, u"\u0100"sv, u"\U0001F600"sv})
    {
        EXPECT_EQ(EncodeStrictly(text), "") << UniString(text);
        EXPECT_EQ(CHUnicode2ANSI(text.data(), static_cast<int>(text.size()), nullptr, 0, CC_Default, false),
                  0);
    }
    EXPECT_EQ(EncodeStrictly(u"\u00AD"), "\xAD") << "the soft hyphen is in the code page";
}

TEST(LossyConversion, WritesOneQuestionMarkACharacter)
{
    const LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(EncodeLossily(u"<\uFF21\u200B\U0001F600\uFEFF\u20AC>"), "<????\x80>");
    EXPECT_EQ(EncodeLossily(std::u16string{0xD83D, u'-', 0xDE00}), "?-?");
    EXPECT_EQ(EncodeLossily(u"\u200B"), "?");
}

TEST(LossyConversion, WritesTheQuestionMarkOfTheCodePage)
{
    const LocalCodePageScope scope("ibm-37");
    EXPECT_EQ(EncodeLossily(u"A\u20ACB"), "\xC1\x6F\xC2");
}

// Code pages that hold ASCII in another way, or not at all.

TEST(EBCDIC, WorksAsLocalCodePage)
{
    const LocalCodePageScope scope("ibm-37");
    EXPECT_EQ(EncodeStrictly(u"Abc 1"), "\xC1\x82\x83\x40\xF1");
    EXPECT_EQ(Decode("\xC1\x82\x83\x40\xF1"), u"Abc 1");
    EXPECT_EQ(UniString("\xC1\x82\x83"), u"Abc");
    EXPECT_EQ(UniString(u"Abc").ToString(), "\xC1\x82\x83");
    EXPECT_EQ(Decode("abc", CC_UTF8), u"abc");
}

TEST(StatefulCodePage, WritesAndReadsEscapeSequences)
{
    const LocalCodePageScope scope("ISO-2022-JP");
    const std::string bytes = EncodeStrictly(u"a\u3042b");
    EXPECT_EQ(bytes, "a\x1B$B$\"\x1B(Bb");
    EXPECT_EQ(Decode(bytes), u"a\u3042b");
}

TEST(CodePage, WithMoreUnitsThanBytesIsDecodedWhole)
{
    const LocalCodePageScope scope("ISCII,version=2");
    std::string bytes;
    std::u16string expected;
    for (int i = 0; i < 100; ++i)
    {
        bytes += "\xC0\xE9";
        expected += u"\u0A5C\u0A4D\u0A39";
    }
    EXPECT_EQ(UniString(bytes), UniString(expected));
}

TEST(CodePages, BringGeneratedTextBack)
{
    std::mt19937 random(20260101);
    std::uniform_int_distribution<int> anyLength(0, 200);
    std::uniform_int_distribution<unsigned> anyUnit(1, 0xD7FF);
    for (const char* codePage : {"UTF-8", "GB18030", "UTF-7", "UTF-16", "SCSU"})
    {
        const LocalCodePageScope scope(codePage);
        for (int i = 0; i < 100; ++i)
        {
            std::u16string text(static_cast<size_t>(anyLength(random)), u'\0');
            for (char16_t& unit : text)
                unit = static_cast<char16_t>(anyUnit(random));
            ASSERT_EQ(UniString(UniString(text).ToString()).View(), text) << codePage;
        }
    }
}

// Long texts, which are converted in pieces.

TEST(LongText, ComesBackWhereverItsPiecesBegin)
{
    constexpr std::u16string_view Characters = u"\u3042\U0001F600\u4E2D\u0416";
    for (const char* codePage : {"UTF-8", "GB18030", "UTF-7", "UTF-16"})
    {
        const LocalCodePageScope scope(codePage);
        for (size_t length = 1000; length < 1040; ++length)
        {
            std::u16string text(length, u'a');
            text.append(Characters).append(text);
            const std::string bytes = UniString(text).ToString();
            ASSERT_EQ(UniString(bytes), UniString(text)) << codePage << length;
            ASSERT_EQ(
                CHUnicode2ANSI(text.data(), static_cast<int>(text.size()), nullptr, 0, CC_Default, false),
                static_cast<int>(bytes.size()));
            ASSERT_EQ(CHANSI2Unicode(bytes.data(), static_cast<int>(bytes.size()), nullptr, 0, CC_Default),
                      static_cast<int>(text.size()));
        }
    }
}

TEST(LongText, IsDecodedAsItsPartsAreWhereItIsIllFormed)
{
    for (const std::string_view bytes : {"\xE2\x82"sv, "\xE2\x82\xE2\x82\xAC"sv, "\x82\x82\x82\x82\x82\x82"sv,
                                         "\xF0\x9F\x98"sv, "\xC0\x80\xC3"sv, "\xED\xA0\x80\xC3\xA4"sv})
        for (size_t length = 1015; length < 1030; ++length)
            ASSERT_EQ(UniString::FromUTF8(std::string(length, 'a').append(bytes)),
                      UniString(std::u16string(length, u'a') + Decode(bytes, CC_UTF8)));
}

TEST(LongText, IsCountedUpToTheLargestNumber)
{
    const NuvTest::RepeatedText<char16_t> text(u"a\u20AC", 716'000'000);
    const int length = static_cast<int>(text.Length());
    EXPECT_EQ(CHUnicode2ANSI(text.Start(), length, nullptr, 0, CC_UTF8, false), length * 2);
    const NuvTest::RepeatedText<char> bytes("\xC3\xA4", 2'200'000'000);
    EXPECT_EQ(CHANSI2Unicode(bytes.Start(), -1, nullptr, 0, CC_UTF8),
              static_cast<int>(bytes.Length() / 2) + 1);
}

TEST(LongText, IsAFailureBeyondTheLargestNumber)
{
    const NuvTest::RepeatedText<char16_t> text(u"\u20AC", 716'000'000);
    EXPECT_EQ(CHUnicode2ANSI(text.Start(), static_cast<int>(text.Length()), nullptr, 0, CC_UTF8, false), 0);
}

} // namespace
