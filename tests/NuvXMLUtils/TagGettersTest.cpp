#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/NuvXMLUtils/PrinterSupport.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <xercesc/dom/DOMCDATASection.hpp>
#include <xercesc/dom/DOMText.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;
using Warnings = Nuv::VAArray<WarningData>;

std::string TagText(const Tree& tree) { return Taken(GetTagText(tree.root)); }

/// Message and line of a failure, e.g. "text (3)".
template <class Get>
std::string FailureOf(Get get)
{
    const ConvException exception = ConvExceptionOf(get);
    return exception.message.ToUTF8() + " (" + std::to_string(exception.line) + ")";
}

// Text.

TEST(GetTagText, GivesTheTextWithoutWhiteSpaceAroundIt)
{
    EXPECT_EQ(TagText(Tree("<n> \t\n 1 2 \n</n>")), "1 2");
    EXPECT_EQ(GetTagTextU(Tree("<n> \t\n 1 2 \n</n>").root), u"1 2");
    EXPECT_EQ(TagText(Tree("<n> </n>")), "");
    EXPECT_EQ(GetTagTextU(Tree("<n> </n>").root), u"");
}

TEST(GetTagText, ExpectsOneTextNode)
{
    for (const char* xml :
         {"\n<n/>", "\n<n>1<!--c--></n>", "\n<n><!--c-->1</n>", "\n<n><a/></n>", "\n<n><![CDATA[1]]></n>",
          "\n<n>1<a/></n>", "<!DOCTYPE n [<!ENTITY e '1'>]>\n<n>&e;</n>"})
    {
        const Tree tree(xml);
        EXPECT_EQ(FailureOf([&] { GetTagText(tree.root); }), "One text node expected in tag 'n' (2)") << xml;
        EXPECT_EQ(FailureOf([&] { GetTagTextU(tree.root); }), "One text node expected in tag 'n' (2)") << xml;
    }
}

TEST(GetTagText, ExpectsTextThatIsNotSplit)
{
    const Tree tree("<n>1</n>");
    tree.root->appendChild(tree.document->createTextNode(u"2"));
    EXPECT_EQ(FailureOf([&] { GetTagText(tree.root); }), "One text node expected in tag 'n' (1)");
    EXPECT_EQ(FailureOf([&] { GetTagTextU(tree.root); }), "One text node expected in tag 'n' (1)");
}

TEST(GetTagText, ConvertsStrictly)
{
    const LocalCodePageScope codePage("windows-1252");
    EXPECT_EQ(TagText(Tree("<n>\xE2\x82\xAC</n>")), "\x80");
    const Tree tree("<n>\xE4\xB8\xAD</n>");
    EXPECT_EQ(FailureOf([&] { GetTagText(tree.root); }), "Failed to transcode string. (0)");
    EXPECT_EQ(GetTagTextU(tree.root), u"\u4E2D");
}

TEST(GetTagText, FailsForAnEmptyTextNode)
{
    const Tree tree("<n/>");
    tree.root->appendChild(tree.document->createTextNode(u""));
    EXPECT_EQ(FailureOf([&] { GetTagText(tree.root); }), "Failed to transcode string. (0)");
    EXPECT_EQ(GetTagTextU(tree.root), u"");
}

// Numbers and booleans.

TEST(NumberGetters, ReadTheValueOfATag)
{
    EXPECT_EQ(GetSLongTag(Tree("<n> 12 </n>").root), 12);
    EXPECT_EQ(GetSLongTag(Tree("<n>-2147483648</n>").root), std::numeric_limits<int>::min());
    EXPECT_EQ(GetULongTag(Tree("<n>\n+4294967295\n</n>").root), 4294967295u);
    EXPECT_EQ(GetDoubleTag(Tree("<n> 1.5e+003 </n>").root), 1500.0);
}

TEST(NumberGetters, NameTheTagAndItsLine)
{
    const auto failure = [](const char* text, auto get)
    {
        const Tree tree("\n\n<n>" + std::string(text) + "</n>");
        return FailureOf([&] { get(tree.root); });
    };
    EXPECT_EQ(failure("abc", GetULongTag), "Tag 'n'; Too many data (3)");
    EXPECT_EQ(failure("-1", GetULongTag), "Tag 'n'; Too many data (3)");
    EXPECT_EQ(failure("2147483648", GetSLongTag), "Tag 'n'; Integer Overflow (3)");
    EXPECT_EQ(failure("-2147483649", GetSLongTag), "Tag 'n'; Integer Underflow (3)");
    EXPECT_EQ(failure(" ", GetSLongTag), "Tag 'n';  (3)");
    EXPECT_EQ(failure("x", GetDoubleTag), "Tag 'n'; Floating point number error (3)");
    EXPECT_EQ(failure("1,5", GetDoubleTag), "Tag 'n'; Too many data (3)");
    EXPECT_EQ(failure("", GetSLongTag), "Tag 'n'; One text node expected in tag 'n' (3)");
    EXPECT_EQ(failure("maybe", GetBoolTag), "Tag 'n'; 'yes/true' or 'no/false' expected, 'maybe' found (3)");
}

TEST(NumberGetters, NameTheTagAlsoWhereTheTextCannotBeConverted)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<n>\xE4\xB8\xAD</n>");
    EXPECT_EQ(FailureOf([&] { GetSLongTag(tree.root); }), "Tag 'n'; Failed to transcode string. (1)");
}

TEST(GetBoolTag, KnowsThreeWordsForEachValue)
{
    for (const std::string word : {"yes", "true", "1", " yes\n"})
        EXPECT_TRUE(GetBoolTag(Tree("<n>" + word + "</n>").root)) << word;
    for (const std::string word : {"no", "false", "0"})
        EXPECT_FALSE(GetBoolTag(Tree("<n>" + word + "</n>").root)) << word;
    const Tree tree("<n>True</n>");
    EXPECT_EQ(FailureOf([&] { GetBoolTag(tree.root); }),
              "Tag 'n'; 'yes/true' or 'no/false' expected, 'True' found (1)");
}

TEST(NumberGetters, ReadBackEveryGeneratedInteger)
{
    std::mt19937 random(17);
    for (int i = 0; i < 2000; ++i)
    {
        const Tree tree;
        const auto number = static_cast<unsigned int>(random()) >> (random() % 32);
        ASSERT_EQ(GetULongTag(NewULongTag(tree.root, "u", number, 0)), number);
        ASSERT_EQ(GetSLongTag(NewSLongTag(tree.root, "s", static_cast<int>(number), 0)),
                  static_cast<int>(number));
        const auto flag = static_cast<unsigned char>(number % 3);
        ASSERT_EQ(GetBoolTag(NewBoolTag(tree.root, "b", flag, 0)), flag != 0);
        ASSERT_EQ(GetBoolTag(NewLegacyBoolTag(tree.root, "l", flag, 0)), flag != 0);
    }
}

TEST(GetDoubleTag, ReadsGeneratedNumbersBackWithinTwelveDigits)
{
    std::mt19937_64 random(19);
    int normal = 0;
    while (normal < 3000)
    {
        const unsigned long long bits = random();
        double number;
        static_assert(sizeof number == sizeof bits);
        std::memcpy(&number, &bits, sizeof number);
        if (!std::isnormal(number))
            continue;
        ++normal;
        const Tree tree;
        const double read = GetDoubleTag(NewDoubleTag(tree.root, "d", number, 0));
        ASSERT_LE(std::fabs(read - number), std::fabs(number) * 5.1e-12) << number;
    }
}

TEST(GetDoubleTag, ReadsZeroAndTheLimitsOfNormalNumbersBack)
{
    const Tree tree;
    EXPECT_EQ(GetDoubleTag(NewDoubleTag(tree.root, "d", 0.0, 0)), 0.0);
    const double smallest = std::numeric_limits<double>::min();
    EXPECT_NEAR(GetDoubleTag(NewDoubleTag(tree.root, "d", smallest, 0)) / smallest, 1.0, 5e-12);
    const double largest = std::numeric_limits<double>::max();
    EXPECT_NEAR(GetDoubleTag(NewDoubleTag(tree.root, "d", largest, 0)) / largest, 1.0, 5e-12);
}

TEST(GetDoubleTag, RefusesADenormalThatNewDoubleTagWrites)
{
    const Tree tree;
    for (const double denormal : {std::numeric_limits<double>::denorm_min(), -2.225e-308})
    {
        const auto* const tag = NewDoubleTag(tree.root, "d", denormal, 0);
        EXPECT_EQ(ConvMessageOf([&] { GetDoubleTag(tag); }), "Tag 'd'; Floating point number error");
    }
}

// CDATA sections.

TEST(GetCDATANode, GivesTheSectionBesideTextAndComments)
{
    const Tree tree("<s>t<!--c--><![CDATA[a]] >b]]>t<!--c--></s>");
    EXPECT_EQ(Taken(GetCDATANode(tree.root)), "a]]>b");
    EXPECT_EQ(Taken(GetCDATANodeU(tree.root)), u"a]]>b");
}

TEST(GetCDATANode, GivesCRLFAndItsUnicodeFormLF)
{
    const Tree tree("<s><![CDATA[\na\nb\n]]></s>");
    EXPECT_EQ(Taken(GetCDATANode(tree.root)), "\r\na\r\nb\r\n");
    EXPECT_EQ(Taken(GetCDATANodeU(tree.root)), u"\na\nb\n");
}

TEST(GetCDATANode, PutsACarriageReturnBeforeEveryLineFeedAlsoBehindAnother)
{
    const Tree tree("<s/>");
    tree.root->appendChild(tree.document->createCDATASection(u"a\r\nb\r"));
    EXPECT_EQ(Taken(GetCDATANode(tree.root)), "a\r\r\nb\r");
    EXPECT_EQ(Taken(GetCDATANodeU(tree.root)), u"a\r\nb\r");
}

TEST(GetCDATANode, FailsWithoutASection)
{
    for (const char* xml : {"\n<s/>", "\n<s>t<!--c--></s>"})
    {
        const Tree tree(xml);
        EXPECT_EQ(FailureOf([&] { GetCDATANode(tree.root); }), "Missing CDATA section in tag 's' (2)");
        EXPECT_EQ(FailureOf([&] { GetCDATANodeU(tree.root); }), "Missing CData section in tag 's' (2)");
    }
}

TEST(GetCDATANode, FailsAtASecondSection)
{
    const Tree tree("<s><![CDATA[a]]>\n<![CDATA[b]]></s>");
    EXPECT_EQ(FailureOf([&] { GetCDATANode(tree.root); }), "More than one CDATA section in tag 's' (2)");
    EXPECT_EQ(FailureOf([&] { GetCDATANodeU(tree.root); }), "More than one CData section in tag 's' (2)");
}

TEST(GetCDATANode, FailsAtAnyOtherNode)
{
    const Tree tree("<s>\n\n<a/><![CDATA[a]]></s>");
    EXPECT_EQ(FailureOf([&] { GetCDATANode(tree.root); }), "Unexpected XML node in tag 's' (3)");
    EXPECT_EQ(FailureOf([&] { GetCDATANodeU(tree.root); }), "Unexpected XML node in tag 's' (3)");
    const Tree reference("<!DOCTYPE s [<!ENTITY e 't'>]><s>\n&e;<![CDATA[a]]></s>");
    EXPECT_EQ(FailureOf([&] { GetCDATANodeU(reference.root); }), "Unexpected XML node in tag 's' (2)");
    const Tree instruction("<s><![CDATA[a]]><?p d?></s>");
    EXPECT_EQ(FailureOf([&] { GetCDATANode(instruction.root); }), "Unexpected XML node in tag 's' (0)");
}

TEST(GetCDATANode, FailsForAnEmptySectionAndItsUnicodeFormDoesNot)
{
    const Tree tree("\n<s/>");
    tree.root->appendChild(tree.document->createCDATASection(u""));
    Warnings warnings;
    EXPECT_EQ(FailureOf([&] { GetCDATANode(tree.root, &warnings); }),
              "CDATA section could not be transcoded in tag 's'; Failed to transcode string. (2)");
    EXPECT_TRUE(warnings.empty());
    EXPECT_EQ(Taken(GetCDATANodeU(tree.root)), u"");
}

TEST(GetCDATANode, WarnsOfCharactersThatTheCodePageLacks)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<s>\n<![CDATA[\xE2\x82\xAC\xE4\xB8\xAD\n]]></s>");
    Warnings warnings = {{u"kept", 1}};
    EXPECT_EQ(Taken(GetCDATANode(tree.root, &warnings)), "\x80?\r\n");
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_EQ(warnings[0].message, u"kept");
    EXPECT_EQ(warnings[1].message,
              u"Some characters cannot be converted correctly to local codepage in tag 's'");
    EXPECT_EQ(warnings[1].line, 3u);
    EXPECT_EQ(Taken(GetCDATANode(tree.root)), "\x80?\r\n");
}

TEST(GetCDATANode, WarnsWithoutALineWhereNoneIsKnown)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<s/>");
    tree.root->appendChild(tree.document->createCDATASection(u"\u4E2D"));
    Warnings warnings;
    EXPECT_EQ(Taken(GetCDATANode(tree.root, &warnings)), "?");
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0].line, 0u);
}

TEST(GetCDATANodeU, NeedsNoWarnings)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<s><![CDATA[\xE4\xB8\xAD]]></s>");
    Warnings warnings;
    EXPECT_EQ(Taken(GetCDATANodeU(tree.root, &warnings)), u"\u4E2D");
    EXPECT_TRUE(warnings.empty());
}

// Strings.

TEST(GetStringTag, ReadsWhatNewStringTagWrites)
{
    const Tree tree;
    EXPECT_EQ(Taken(GetStringTag(NewStringTag(tree.root, "s", "a]]>b", 0))), "a]]>b");
    EXPECT_EQ(Taken(GetStringTag(NewStringTag(tree.root, "s", "", 0))), "");
    EXPECT_EQ(Taken(GetStringTag(NewStringTag(tree.root, "s", "\r", 0))), "\r\n");
    EXPECT_EQ(Taken(GetStringTagU(NewStringTag(tree.root, "s", u" \"'`\r\n", 0))), u" \"'`\n");
}

TEST(GetStringTag, IgnoresWhiteSpaceAroundTheQuotesAndNodesBesideTheSection)
{
    const Tree tree("<s><![CDATA[ \n\"x\"\t]]> \n<!--c--></s>");
    EXPECT_EQ(Taken(GetStringTag(tree.root)), "x");
    EXPECT_EQ(Taken(GetStringTagU(tree.root)), u"x");
}

TEST(GetStringTag, NamesTheTagAndTheLine)
{
    const auto failure = [](const char* content, auto get)
    {
        const Tree tree("\n<s>\n" + std::string(content) + "</s>");
        return FailureOf([&] { get(tree.root, nullptr); });
    };
    constexpr char TwoSections[] = "<![CDATA['x']]>\n<![CDATA['y']]>";
    EXPECT_EQ(failure("<![CDATA[x]]>", GetStringTag), "Tag 's'; String value error (2)");
    EXPECT_EQ(failure("<![CDATA[x]]>", GetStringTagU), "Tag 's'; String value error (2)");
    EXPECT_EQ(failure(TwoSections, GetStringTag), "Tag 's'; More than one CDATA section in tag 's' (4)");
    EXPECT_EQ(failure(TwoSections, GetStringTagU), "Tag 's'; More than one CData section in tag 's' (4)");
    EXPECT_EQ(failure("", GetStringTag), "Tag 's'; Missing CDATA section in tag 's' (2)");
    EXPECT_EQ(failure("", GetStringTagU), "Tag 's'; Missing CData section in tag 's' (2)");
    EXPECT_EQ(failure("<a/>", GetStringTag), "Tag 's'; Unexpected XML node in tag 's' (3)");
}

TEST(GetStringTag, WarnsOfCharactersThatTheCodePageLacks)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree;
    const auto* const tag = NewStringTag(tree.root, "s", u"a\u4E2D", 0);
    Warnings warnings;
    EXPECT_EQ(Taken(GetStringTag(tag, &warnings)), "a?");
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0].message,
              u"Some characters cannot be converted correctly to local codepage in tag 's'");
    EXPECT_EQ(Taken(GetStringTag(tag)), "a?");
    EXPECT_EQ(Taken(GetStringTagU(tag)), u"a\u4E2D");
}

TEST(GetStringTag, LosesNothingInUTF8)
{
    const LocalCodePageScope codePage("UTF-8");
    const Tree tree;
    Warnings warnings;
    EXPECT_EQ(Taken(GetStringTag(NewStringTag(tree.root, "s", u"\u4E2D\U0001F600", 0), &warnings)), "中😀");
    EXPECT_TRUE(warnings.empty());
}

/// Texts over quotes, brackets, blanks and line ends, and now and then any other unit.
std::u16string RandomText(std::mt19937& random)
{
    constexpr std::u16string_view Alphabet = u"\"'`]]]> \t\r\n&<x";
    std::u16string text(random() % 40, u'\0');
    for (char16_t& unit : text)
        unit = random() % 10 ? Alphabet[random() % Alphabet.size()]
                             : static_cast<char16_t>(1 + random() % 0xFFFF);
    return text;
}

TEST(GetStringTagU, ReadsEveryGeneratedTextBackWithLineFeeds)
{
    std::mt19937 random(23);
    for (int i = 0; i < 5000; ++i)
    {
        const std::u16string text = RandomText(random);
        Nuv::UniString expected(std::u16string_view{text});
        expected.ReplaceAll(u"\r\n", u"\n");
        expected.ReplaceAll(u"\r", u"\n");
        const Tree tree;
        ASSERT_EQ(Taken(GetStringTagU(NewStringTag(tree.root, "s", text.c_str(), 0))), expected);
        const auto length = static_cast<int>(text.size());
        ASSERT_EQ(Taken(GetStringTagU(NewStringWLenTag(tree.root, "s", text.data(), length, 0))), expected);
    }
}

TEST(GetStringTag, ReadsGeneratedTextBackWithCRLF)
{
    const LocalCodePageScope codePage("windows-1252");
    std::mt19937 random(29);
    for (int i = 0; i < 2000; ++i)
    {
        std::string text(random() % 40, '\0');
        constexpr std::string_view Alphabet = "\"'`]]]> \t\r\n&<x\x80\xE4";
        std::generate(text.begin(), text.end(), [&] { return Alphabet[random() % Alphabet.size()]; });
        Nuv::UniString expected(text);
        expected.ReplaceAll(u"\r\n", u"\n");
        expected.ReplaceAll(u"\r", u"\n");
        expected.ReplaceAll(u"\n", u"\r\n");
        const Tree tree;
        const std::string read = Taken(GetStringTag(NewStringTag(tree.root, "s", text.c_str(), 0)));
        ASSERT_EQ(Nuv::UniString(read), expected);
    }
}

TEST(GetStringTagU, ReadsReferencesAsTextWhereTheEncodingLackedACharacter)
{
    const Tree tree;
    NewStringTag(tree.root, "s", u"\u00E4 \u20AC", 0);
    EXPECT_EQ(Taken(GetStringTagU(Tree(Print(*tree.root, u"UTF-8")).Find(u"s"))), u"\u00E4 \u20AC");
    EXPECT_EQ(Taken(GetStringTagU(Tree(Print(*tree.root, u"ISO-8859-1")).Find(u"s"))), u"\u00E4 &#x20AC;");
}

} // namespace
