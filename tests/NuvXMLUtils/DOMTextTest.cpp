#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;

Nuv::UniString TextOf(const unsigned short* units)
{
    std::u16string text;
    for (; *units; ++units)
        text += static_cast<char16_t>(*units);
    return Nuv::UniString(text);
}

// Local code page.

TEST(StringToUnicode, DecodesTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    EXPECT_EQ(StringToUnicode("10 \x80"), u"10 \u20AC");
    EXPECT_EQ(StringToUnicode(""), u"");
}

TEST(StringToUnicode, DecodesUTF8)
{
    const LocalCodePageScope codePage("UTF-8");
    EXPECT_EQ(StringToUnicode("\xE2\x82\xAC \xF0\x9F\x98\x80"), u"\u20AC \U0001F600");
    EXPECT_EQ(StringToUnicode("a\xFF"), u"a\uFFFD");
}

TEST(StringToUnicode, FailsForNull)
{
    EXPECT_EQ(DOMFailureOf([] { StringToUnicode(nullptr); }), "0: Failed to translate string to unicode");
}

TEST(UnicodeToString, EncodesTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    EXPECT_EQ(Taken(UnicodeToString(u"10 \u20AC", false)), "10 \x80");
    EXPECT_EQ(Taken(UnicodeToString(u"10 \u20AC", true)), "10 \x80");
}

TEST(UnicodeToString, LosesNothingInUTF8)
{
    const LocalCodePageScope codePage("UTF-8");
    EXPECT_EQ(Taken(UnicodeToString(u"\u20AC \U0001F600", false)), "\xE2\x82\xAC \xF0\x9F\x98\x80");
}

TEST(UnicodeToString, FailsStrictlyAndReplacesLossilyWhatTheCodePageLacks)
{
    const LocalCodePageScope codePage("windows-1252");
    EXPECT_EQ(ConvMessageOf([] { UnicodeToString(u"a\u4E2D", false); }), "Failed to transcode string.");
    EXPECT_EQ(Taken(UnicodeToString(u"a\u4E2D\U0001F600z", true)), "a??z");
}

TEST(UnicodeToString, FailsForAnEmptyText)
{
    EXPECT_EQ(ConvMessageOf([] { UnicodeToString(u"", false); }), "Failed to transcode string.");
    EXPECT_EQ(ConvMessageOf([] { UnicodeToString(u"", true); }), "Failed to transcode string.");
}

TEST(UnicodeToString, ConvertsTheWholeLength)
{
    const std::unique_ptr<char[]> text(UnicodeToString({u"a\0b", 3}, false));
    EXPECT_EQ(std::memcmp(text.get(), "a\0b", 4), 0);
}

// Trimming.

struct TrimCase
{
    const char* text;
    const char* withoutTabSpace;
    const char* withoutWhSpace;
};

const TrimCase TrimCases[] = {
    {"  a b \r\n", "a b \r\n", "a b"},
    {"\t\t", "", ""},
    {" ", "", ""},
    {"", "", ""},
    {"a", "a", "a"},
    {"\n a \n", "\n a \n", "a"},
    {"a \t b\t ", "a \t b", "a \t b"},
    {"\v a \f", "\v a \f", "\v a \f"},
    {"\xA0 a \xA0", "\xA0 a \xA0", "\xA0 a \xA0"},
};

std::string Cut(const char* text, void (*cut)(char*&))
{
    std::string buffer(text);
    char* s = buffer.data();
    cut(s);
    return s;
}

Nuv::UniString CutU(const Nuv::UniString& text)
{
    std::vector<unsigned short> buffer = Units(text.View());
    unsigned short* s = buffer.data();
    CutWhSpaceU(s);
    return TextOf(s);
}

TEST(Trimming, TakesTheCharactersOfItsSetOffBothEnds)
{
    const LocalCodePageScope codePage("windows-1252");
    for (const TrimCase& trim : TrimCases)
    {
        EXPECT_EQ(Cut(trim.text, CutTabSpace), trim.withoutTabSpace) << trim.text;
        EXPECT_EQ(Cut(trim.text, CutWhSpace), trim.withoutWhSpace) << trim.text;
        EXPECT_EQ(CutU(Nuv::UniString(trim.text)), Nuv::UniString(trim.withoutWhSpace)) << trim.text;
    }
}

TEST(Trimming, MovesThePointerAndNotTheBuffer)
{
    char buffer[] = "  a b  ";
    char* s = buffer;
    CutWhSpace(s);
    EXPECT_EQ(s, buffer + 2);
    EXPECT_EQ(std::memcmp(buffer, "  a b\0 ", sizeof buffer), 0);
}

TEST(Trimming, LeavesTheStartOfABlankTextOnItsTerminator)
{
    char buffer[] = "\t\t";
    char* s = buffer;
    CutTabSpace(s);
    EXPECT_EQ(s, buffer + 2);
}

// Quoted values.

std::string Unquoted(std::string text) { return GetStringValue(text.data()); }

Nuv::UniString UnquotedU(std::u16string_view text)
{
    std::vector<unsigned short> units = Units(text);
    return TextOf(GetStringValueU(units.data()));
}

TEST(GetStringValue, TakesAnyOfThreeQuotesOff)
{
    EXPECT_EQ(Unquoted("'abc'"), "abc");
    EXPECT_EQ(Unquoted("\"abc\""), "abc");
    EXPECT_EQ(Unquoted("`abc`"), "abc");
    EXPECT_EQ(Unquoted("''"), "");
    EXPECT_EQ(UnquotedU(u"'\u4E2D'"), u"\u4E2D");
    EXPECT_EQ(UnquotedU(u"\"\""), u"");
    EXPECT_EQ(UnquotedU(u"`a`"), u"a");
}

TEST(GetStringValue, UnescapesNothing)
{
    EXPECT_EQ(Unquoted("'a'b\\n'"), "a'b\\n");
    EXPECT_EQ(UnquotedU(u"'a'b'"), u"a'b");
}

TEST(GetStringValue, FailsForAnythingThatIsNotQuoted)
{
    for (const char* text : {"'abc\"", "'", "", "abc", "'abc", "abc'", " 'abc'", "xabcx"})
    {
        EXPECT_EQ(ConvMessageOf([&] { Unquoted(text); }), "String value error") << text;
        EXPECT_EQ(ConvMessageOf([&] { UnquotedU(Nuv::UniString(text).View()); }), "String value error")
            << text;
    }
}

TEST(GetStringValue, GivesAPlaceInItsArgument)
{
    char text[] = "'abc'";
    EXPECT_EQ(GetStringValue(text), text + 1);
    EXPECT_EQ(std::memcmp(text, "'abc\0", sizeof text), 0);
}

Nuv::UniString Quoted(Nuv::UniString text)
{
    MakeItTAMString(text);
    return text;
}

TEST(MakeItTAMString, ChoosesAQuoteThatDoesNotOccur)
{
    EXPECT_EQ(Quoted(u"abc"), u"\"abc\"");
    EXPECT_EQ(Quoted(u"a\"b"), u"'a\"b'");
    EXPECT_EQ(Quoted(u"a'b"), u"\"a'b\"");
    EXPECT_EQ(Quoted(u"a`b'c"), u"\"a`b'c\"");
    EXPECT_EQ(Quoted(u"a\"b'c"), u"`a\"b'c`");
    EXPECT_EQ(Quoted(u"a\"b'c`d"), u"\"a\"b'c`d\"");
    EXPECT_EQ(Quoted(u""), u"\"\"");
}

// CDATA sections.

Nuv::UniString Corrected(std::u16string_view text)
{
    Nuv::UniString result(text);
    CorrectCDATA(result);
    return result;
}

Nuv::UniString Converted(std::u16string_view text)
{
    Nuv::UniString result(text);
    ConvertCDATA(result);
    return result;
}

TEST(CorrectCDATA, NormalisesLineEndsAndSeparatesBrackets)
{
    EXPECT_EQ(Corrected(u"x]]>y\r\nz\r"), u"x]] >y\nz\n");
    EXPECT_EQ(Corrected(u"\r\r\n\n"), u"\n\n\n");
    EXPECT_EQ(Corrected(u"]]]]]"), u"]] ]] ]");
    EXPECT_EQ(Corrected(u"]]"), u"]] ");
    EXPECT_EQ(Corrected(u"]"), u"]");
    EXPECT_EQ(Corrected(u""), u"");
}

TEST(ConvertCDATA, TakesOutTheBlankBehindTwoBrackets)
{
    EXPECT_EQ(Converted(u"x]] >y\nz\n"), u"x]]>y\nz\n");
    EXPECT_EQ(Converted(u"]] ]] "), u"]]]]");
    EXPECT_EQ(Converted(u"]] "), u"]]");
    EXPECT_EQ(Converted(u"]]  "), u"]] ");
    EXPECT_EQ(Converted(u"]]] ]"), u"]]]]");
    EXPECT_EQ(Converted(u"] ] "), u"] ] ");
    EXPECT_EQ(Converted(u"]]"), u"]]");
    EXPECT_EQ(Converted(u"\r\n"), u"\r\n");
    EXPECT_EQ(Converted(u""), u"");
}

TEST(ConvertCDATA, IsQuickWithManyBrackets)
{
    std::u16string brackets;
    for (int i = 0; i < 1'000'000; ++i)
        brackets += u"]] ";
    EXPECT_EQ(Converted(brackets).GetLength(), 2'000'000u);
}

/// The scan character by character that ConvertCDATA is defined by.
Nuv::UniString ConvertedByScanning(std::u16string text)
{
    for (size_t i = 0; i + 2 < text.size();)
        if (text[i] == u']' && text[i + 1] == u']' && text[i + 2] == u' ')
        {
            text.erase(i + 2, 1);
            i += 2;
        }
        else
            ++i;
    return Nuv::UniString(text);
}

Nuv::UniString WithLineFeeds(std::u16string_view text)
{
    std::u16string normalised;
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] != u'\r')
            normalised += text[i];
        else if (i + 1 == text.size() || text[i + 1] != u'\n')
            normalised += u'\n';
    return Nuv::UniString(normalised);
}

/// Every text of up to `maxLength` characters of the alphabet.
template <class Check>
void ForEachText(std::u16string_view alphabet, size_t maxLength, Check check)
{
    std::vector<std::u16string> texts = {u""};
    for (size_t length = 0; length <= maxLength; ++length)
    {
        std::vector<std::u16string> longer;
        for (const std::u16string& text : texts)
        {
            check(text);
            for (const char16_t unit : alphabet)
                longer.push_back(text + unit);
        }
        texts = std::move(longer);
    }
}

TEST(CDATAPair, GivesEveryTextBackWithLineFeeds)
{
    ForEachText(u"] >\r\n", 7,
                [](const std::u16string& text)
                {
                    const Nuv::UniString corrected = Corrected(text);
                    ASSERT_EQ(corrected.View().find(u"]]>"), std::u16string_view::npos) << corrected;
                    ASSERT_EQ(Converted(corrected.View()), WithLineFeeds(text)) << Nuv::UniString(text);
                });
}

TEST(CDATAPair, GivesLongGeneratedTextsBackWithLineFeeds)
{
    std::mt19937 random(20240501);
    constexpr std::u16string_view Alphabet = u"]]]]  >\r\nx";
    for (int i = 0; i < 2000; ++i)
    {
        std::u16string text(random() % 300, u'\0');
        std::generate(text.begin(), text.end(), [&] { return Alphabet[random() % Alphabet.size()]; });
        ASSERT_EQ(Converted(Corrected(text).View()), WithLineFeeds(text)) << Nuv::UniString(text);
    }
}

TEST(CDATAPair, LosesABlankBehindTwoBracketsThatIsNotItsOwn)
{
    EXPECT_EQ(Corrected(Converted(u"]]x").View()), u"]] x");
    EXPECT_EQ(Converted(u"a]] b"), u"a]]b");
}

TEST(ConvertCDATA, AgreesWithAScanCharacterByCharacter)
{
    ForEachText(u"] x", 8,
                [](const std::u16string& text)
                { ASSERT_EQ(Converted(text), ConvertedByScanning(text)) << Nuv::UniString(text); });
}

} // namespace
