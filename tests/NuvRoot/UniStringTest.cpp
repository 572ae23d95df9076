#include "NuvRoot/UniString.hpp"

#include "NuvRoot/Exceptions.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <sstream>
#include <unordered_set>

namespace
{

using namespace std::string_literals;
using namespace std::string_view_literals;
using Nuv::UniString;
using NuvTest::LocalCodePageScope;

constexpr char16_t LoneHighSurrogate = 0xD83D;
constexpr char16_t LoneLowSurrogate = 0xDE00;

// Construction.

TEST(UniString, IsEmptyWhenDefaultConstructed)
{
    const UniString text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetLength(), 0u);
    EXPECT_EQ(text.ToUTF16()[0], u'\0');
}

TEST(UniString, IsEmptyWhenMadeOfNullPointers)
{
    EXPECT_EQ(UniString(static_cast<const char*>(nullptr)), u"");
    EXPECT_EQ(UniString(static_cast<const char*>(nullptr), Nuv::CC_UTF8), u"");
    EXPECT_EQ(UniString(static_cast<const char16_t*>(nullptr)), u"");
    EXPECT_EQ(UniString(static_cast<const char16_t*>(nullptr), 5), u"");
}

TEST(UniString, DecodesEightBitTextFromTheLocalCodePage)
{
    const LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(UniString("\x80\xE4"), u"\u20AC\u00E4");
    EXPECT_EQ(UniString(Nuv::String("\x80\0\xE4", 3)), UniString(u"\u20AC\0\u00E4"sv));
}

TEST(UniString, DecodesUTF8WhateverTheLocalCodePage)
{
    const LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(UniString("\xE2\x82\xAC", Nuv::CC_UTF8), u"\u20AC");
    EXPECT_EQ(UniString("\xF0\x9F\x98\x80\0z"s, Nuv::CC_UTF8), UniString(u"\U0001F600\0z"sv));
    EXPECT_EQ(UniString::FromUTF8("\xC3\xA4"), u"\u00E4");
}

TEST(UniString, ReplacesUndecodableBytes)
{
    EXPECT_EQ(UniString("a\xFFz", Nuv::CC_UTF8), u"a\uFFFDz");
    EXPECT_EQ(UniString("a\xC3", Nuv::CC_UTF8), u"a\uFFFD");
    EXPECT_EQ(UniString("\xED\xA0\xBD", Nuv::CC_UTF8).View().find(0xD83D), std::u16string_view::npos);
    const LocalCodePageScope scope("Shift_JIS");
    EXPECT_EQ(UniString("a\x82"), u"a\uFFFD");
}

TEST(UniString, KeepsUTF16AsItIs)
{
    const char16_t units[] = {u'a', LoneLowSurrogate, LoneHighSurrogate, u'z', 0};
    const UniString text(units);
    EXPECT_EQ(text.GetLength(), 4u);
    EXPECT_EQ(text[1], LoneLowSurrogate);
    EXPECT_EQ(text[2], LoneHighSurrogate);
    EXPECT_EQ(UniString(units, 2).GetLength(), 2u);
    EXPECT_EQ(UniString(u"a\0b", 3).View(), u"a\0b"sv);
    EXPECT_EQ(UniString(std::u16string_view(units, 4)), text);
}

TEST(UniString, TakesEightBitTextByAssignment)
{
    const LocalCodePageScope scope("ISO-8859-1");
    UniString text(u"old");
    text = "\xE4";
    EXPECT_EQ(text, u"\u00E4");
    const char* nothing = nullptr;
    text = nothing;
    EXPECT_EQ(text, u"");
}

TEST(UniString, HasValueSemantics)
{
    UniString first(u"one");
    const UniString second(first);
    first += u'!';
    EXPECT_EQ(first, u"one!");
    EXPECT_EQ(second, u"one");
}

// Conversion.

TEST(UniString, CountsUTF16Units)
{
    const UniString text(u"a\U0001F600");
    EXPECT_EQ(text.GetLength(), 3u);
    EXPECT_EQ(text[0], u'a');
    EXPECT_EQ(text[1], 0xD83D);
    EXPECT_EQ(text[2], 0xDE00);
    EXPECT_FALSE(text.IsEmpty());
    EXPECT_EQ(std::u16string(text.ToUTF16()), u"a\U0001F600");
    EXPECT_EQ(text.View(), u"a\U0001F600");
}

TEST(UniString, EncodesToTheLocalCodePage)
{
    const LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(UniString(u"\u20AC\u00E4").ToString(), "\x80\xE4");
    EXPECT_EQ(UniString(u"\u20AC").ToString(Nuv::CC_UTF8), "\xE2\x82\xAC");
}

TEST(UniString, WritesOneQuestionMarkForACharacterThatTheCodePageLacks)
{
    const LocalCodePageScope scope("windows-1252");
    EXPECT_EQ(UniString(u"a\u4E2D\U0001F600\u200Bz").ToString(), "a???z");
    const char16_t half[] = {u'a', LoneHighSurrogate, u'z', 0};
    EXPECT_EQ(UniString(half).ToString(), "a?z");
}

TEST(UniString, WritesWellFormedUTF8)
{
    EXPECT_EQ(UniString(u"z\u00E4\u20AC\U0001F600").ToUTF8(), "z\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    const char16_t halves[] = {LoneLowSurrogate, LoneHighSurrogate, u'z', LoneHighSurrogate, 0};
    EXPECT_EQ(UniString(halves).ToUTF8(), "\xEF\xBF\xBD\xEF\xBF\xBDz\xEF\xBF\xBD");
    EXPECT_EQ(UniString().ToUTF8(), "");
    EXPECT_EQ(UniString(u"a\0z"sv).ToUTF8(), "a\0z"s);
}

TEST(UniString, CopiesUTF8ToAnArrayOfTheCaller)
{
    const std::unique_ptr<char[]> copy(UniString(u"\u20AC!").CopyUTF8());
    EXPECT_STREQ(copy.get(), "\xE2\x82\xAC!");
    const std::unique_ptr<char[]> empty(UniString().CopyUTF8());
    EXPECT_STREQ(empty.get(), "");
}

// Editing.

TEST(UniString, InsertsTextBeforeAPosition)
{
    UniString text(u"ad");
    text.Insert(1, u"bc");
    EXPECT_EQ(text, u"abcd");
    text.Insert(0, u"<");
    text.Insert(5, u">");
    EXPECT_EQ(text, u"<abcd>");
    text.Insert(100, u"!");
    EXPECT_EQ(text, u"<abcd>!");
    text.Insert(1, text);
    EXPECT_EQ(text, u"<<abcd>!abcd>!");
}

TEST(UniString, DeletesUnits)
{
    UniString text(u"abcdef");
    text.Delete(1, 2);
    EXPECT_EQ(text, u"adef");
    text.Delete(2, 100);
    EXPECT_EQ(text, u"ad");
    text.Delete(2, 1);
    text.Delete(100, 1);
    text.Delete(0, 0);
    EXPECT_EQ(text, u"ad");
    text.Delete(0, std::numeric_limits<size_t>::max());
    EXPECT_EQ(text, u"");
}

UniString Replaced(UniString text, const UniString& what, const UniString& replacement)
{
    text.ReplaceAll(what, replacement);
    return text;
}

TEST(UniString, ReplacesEveryOccurrenceFromLeftToRight)
{
    EXPECT_EQ(Replaced(u"a-b-c", u"-", u"+"), u"a+b+c");
    EXPECT_EQ(Replaced(u"aaa", u"aa", u"b"), u"ba");
    EXPECT_EQ(Replaced(u"\r\n\n\r\n", u"\r\n", u"\n"), u"\n\n\n");
    EXPECT_EQ(Replaced(u"a", u"a", u"aa"), u"aa") << "the replacement is not searched again";
    EXPECT_EQ(Replaced(u"-a-", u"-", u""), u"a");
    EXPECT_EQ(Replaced(u"abc", u"x", u"y"), u"abc");
    EXPECT_EQ(Replaced(u"abc", u"", u"y"), u"abc");
    EXPECT_EQ(Replaced(u"", u"a", u"b"), u"");
}

TEST(UniString, ReplacesByItself)
{
    UniString text(u"ab");
    text.ReplaceAll(u"a", text);
    EXPECT_EQ(text, u"abb");
    text.ReplaceAll(text, u"c");
    EXPECT_EQ(text, u"c");
}

TEST(UniString, AppendsUnitsAndText)
{
    UniString text(u"a");
    text += u'b';
    text += UniString(u"cd");
    text += text;
    EXPECT_EQ(text, u"abcdabcd");
    EXPECT_EQ(UniString(u"a") + UniString(u"b") + u"c", u"abc");
}

constexpr char16_t WhiteSpace[] =
    u"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A"
    u"\u2028\u2029\u202F\u205F\u3000";

TEST(UniString, TrimsEveryWhiteSpaceCharacterAtBothEnds)
{
    UniString text = UniString(WhiteSpace) + u"a" + WhiteSpace + u"z" + WhiteSpace;
    const UniString expected = UniString(u"a") + WhiteSpace + u"z";
    EXPECT_EQ(Nuv::Trimmed(text.View()), expected.View());
    text.Trim();
    EXPECT_EQ(text, expected);
    UniString blank(WhiteSpace);
    blank.Trim();
    EXPECT_EQ(blank, u"");
    EXPECT_EQ(Nuv::Trimmed({}), u"");
}

TEST(UniString, TrimsNothingElse)
{
    UniString text(u"\u200B\uFEFFa\u180E\0"sv);
    text.Trim();
    EXPECT_EQ(text, UniString(u"\u200B\uFEFFa\u180E\0"sv));
    for (char16_t unit = 0xFFFF; unit > 0; --unit)
        ASSERT_EQ(Nuv::Trimmed({&unit, 1}).empty(),
                  std::u16string_view(WhiteSpace).find(unit) != std::u16string::npos)
            << static_cast<int>(unit);
}

TEST(UniString, BecomesLowerCaseByUnicodeRules)
{
    UniString text(u"AbC \u00C4\u0395\u03A3 \u0130 \U00010400");
    text.ToLower();
    EXPECT_EQ(text, u"abc \u00E4\u03B5\u03C2 i\u0307 \U00010428");
    UniString growing(u"\u0130\u0130\u0130");
    growing.ToLower();
    EXPECT_EQ(growing, u"i\u0307i\u0307i\u0307");
    UniString empty;
    empty.ToLower();
    EXPECT_EQ(empty, u"");
}

TEST(UniString, FormatsTextAndIntegers)
{
    UniString text(u"old");
    text.Printf("%s|%S|%d|%u|%%", "eight", u"sixteen", -5, 7u);
    EXPECT_EQ(text, u"eight|sixteen|-5|7|%");
    text.Printf("%S+%s", UniString(u"\u20AC"), std::string("string"));
    EXPECT_EQ(text, u"\u20AC+string");
    text.Printf("%S, %S", text, text);
    EXPECT_EQ(text, u"\u20AC+string, \u20AC+string");
}

TEST(UniString, FormatsEveryArgumentByItsOwnType)
{
    UniString text;
    text.Printf("%s %s %d", u"wide", -1, "narrow");
    EXPECT_EQ(text, u"wide -1 narrow");
    text.Printf("%d %u", std::numeric_limits<long long>::min(),
                std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(text, u"-9223372036854775808 18446744073709551615");
    text.Printf("[%s][%S]", static_cast<const char*>(nullptr), static_cast<const char16_t*>(nullptr));
    EXPECT_EQ(text, u"[][]");
}

TEST(UniString, FormatsEightBitTextFromTheLocalCodePage)
{
    const LocalCodePageScope scope("windows-1252");
    UniString text;
    text.Printf("\xE4%s", "\x80");
    EXPECT_EQ(text, u"\u00E4\u20AC");
}

TEST(UniString, FormatsWhatIsNoDirectiveAsItIs)
{
    UniString text;
    text.Printf("100% %x %");
    EXPECT_EQ(text, u"100% %x %");
    text.Printf("no directive", 1, 2);
    EXPECT_EQ(text, u"no directive");
    text.Printf("");
    EXPECT_EQ(text, u"");
}

TEST(UniString, StaysAsItIsWhenAFormatLacksArguments)
{
    UniString text(u"old");
    EXPECT_THROW(text.Printf("%s %s", "one"), Nuv::GeneralException);
    EXPECT_EQ(text, u"old");
}

// Comparison.

TEST(UniString, ComparesByUnit)
{
    EXPECT_TRUE(UniString(u"a") == UniString(u"a"));
    EXPECT_TRUE(UniString(u"a") != UniString(u"A"));
    EXPECT_TRUE(UniString(u"a") < UniString(u"b"));
    EXPECT_TRUE(UniString(u"a") < UniString(u"aa"));
    EXPECT_FALSE(UniString(u"a") < UniString(u"a"));
    EXPECT_TRUE(UniString(u"\U0001F600") < UniString(u"\uFF5E")) << "surrogates are less than U+FF5E";
    EXPECT_TRUE(UniString(u"a\0b"sv) != UniString(u"a"));
    EXPECT_TRUE(UniString(u"\u00E4") != UniString(u"a\u0308")) << "without normalisation";
}

TEST(UniString, ComparesByFullCaseFoldingOnRequest)
{
    EXPECT_FALSE(UniString(u"abc").IsEqual(u"ABC"));
    EXPECT_FALSE(UniString(u"abc").IsEqual(u"ABC", Nuv::CaseSensitive));
    EXPECT_TRUE(UniString(u"abc").IsEqual(u"abc"));
    EXPECT_TRUE(UniString(u"abc").IsEqual(u"ABC", Nuv::CaseInsensitive));
    EXPECT_TRUE(UniString(u"stra\u00DFe").IsEqual(u"STRASSE", Nuv::CaseInsensitive));
    EXPECT_TRUE(UniString(u"\u03A3\u03C3").IsEqual(u"\u03C2\u03A3", Nuv::CaseInsensitive));
    EXPECT_TRUE(UniString(u"\U00010400").IsEqual(u"\U00010428", Nuv::CaseInsensitive));
    EXPECT_FALSE(UniString(u"abc").IsEqual(u"ABCD", Nuv::CaseInsensitive));
    EXPECT_FALSE(UniString(u"I").IsEqual(u"\u0131", Nuv::CaseInsensitive));
}

TEST(UniString, IsNoEqualOfTheEmptyTextButWhenEmpty)
{
    EXPECT_TRUE(Nuv::EqualIgnoringCase({}, {}));
    EXPECT_TRUE(Nuv::EqualIgnoringCase({}, u""));
    EXPECT_FALSE(Nuv::EqualIgnoringCase(u"a", {}));
    EXPECT_FALSE(Nuv::EqualIgnoringCase({}, u"a"));
    EXPECT_FALSE(Nuv::EqualIgnoringCase(u"\0"sv, {}));
    EXPECT_FALSE(Nuv::EqualIgnoringCase(u"a\0b"sv, u"A\0c"sv));
    EXPECT_TRUE(Nuv::EqualIgnoringCase(u"a\0b"sv, u"A\0B"sv));
}

TEST(UniString, IsHashedByItsContents)
{
    const std::unordered_set<UniString> set{u"one", u"two"};
    EXPECT_EQ(set.count(UniString("one", Nuv::CC_UTF8)), 1u);
    EXPECT_EQ(set.count(u"three"), 0u);
}

TEST(UniString, IsPrintedAsUTF8)
{
    const LocalCodePageScope scope("windows-1252");
    std::ostringstream stream;
    stream << UniString(u"\u20AC");
    EXPECT_EQ(stream.str(), "\xE2\x82\xAC");
}

} // namespace
