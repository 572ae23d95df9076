#include "tests/NuvXMLUtils/BarrenDocument.hpp"
#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <limits>
#include <vector>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;
using xercesc_3_0::DOMElement;

// Text.

TEST(NewTag, WritesTextOnALineOfItsOwn)
{
    const Tree tree;
    const DOMElement* const tag = NewTag(tree.root, "a", "x", 2, false, nullptr);
    EXPECT_EQ(Shown(tree.root), "{\\t\\t}a({x}){\\n}");
    EXPECT_EQ(tag, tree.Find(u"a"));
}

TEST(NewTag, StaysEmptyWithoutAValueUnlessItIsQuoted)
{
    const Tree tree;
    NewTag(tree.root, "a", nullptr, 0, false, nullptr);
    NewTag(tree.root, "b", nullptr, 0, true, nullptr);
    NewTag(tree.root, "c", "", 0, false, nullptr);
    EXPECT_EQ(Shown(tree.root), "{}a(){\\n}{}b([\"\"]){\\n}{}c({}){\\n}");
}

TEST(NewTag, TakesUnicodeTextWhereThereIsNoEightBitText)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree;
    const std::vector<unsigned short> units = Units(u"\u4E2D");
    NewTag(tree.root, "a", nullptr, 0, false, units.data());
    NewTag(tree.root, "b", nullptr, 0, false, u"\u4E2D");
    NewTag(tree.root, "c", "\x80", 0, false, units.data());
    NewTag(tree.root, "d", "\x80", 0, true, u"\u4E2D");
    EXPECT_EQ(Shown(tree.root), "{}a({中}){\\n}{}b({中}){\\n}{}c({€}){\\n}{}d([\"€\"]){\\n}");
}

TEST(NewTag, TakesNullPointersOfEveryKind)
{
    const Tree tree;
    const char16_t* const noText = nullptr;
    NewTag(tree.root, "a", nullptr, 0, false, noText);
    NewTag(tree.root, "b", NULL, 0, false, NULL);
    NewTag(tree.root, "c", 0, 0, false, 0);
    EXPECT_EQ(Shown(tree.root), "{}a(){\\n}{}b(){\\n}{}c(){\\n}");
}

TEST(NewTag, ChangesTextOnlyWhenItIsQuoted)
{
    const Tree tree;
    NewTag(tree.root, "a", "]]>\r\n\"", 0, false, nullptr);
    NewTag(tree.root, "b", "]]>\r\n\"", 0, true, nullptr);
    EXPECT_EQ(Shown(tree.root), "{}a({]]>\\r\\n\"}){\\n}{}b([']] >\\n\"']){\\n}");
}

TEST(NewTag, TakesItsNameInTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree;
    NewTag(tree.root,
           "gr\xF6\xDF"
           "e",
           nullptr, 0, false, nullptr);
    EXPECT_EQ(Shown(tree.root), "{}größe(){\\n}");
}

TEST(NewTag, AddsNothingForANameThatXMLForbids)
{
    const Tree tree;
    EXPECT_THROW(NewTag(tree.root, "a b", "x", 1, false, nullptr), xercesc_3_0::DOMException);
    EXPECT_EQ(Shown(tree.root), "");
}

TEST(TagBuilders, FailWhenANodeIsNotMade)
{
    BarrenDocument document;
    const BitNames names[] = {{1, "bit"}, {0, nullptr}};
    for (const bool makesElements : {true, false})
    {
        document.textsToMake = 0;
        document.makesElements = makesElements;
        EXPECT_EQ(DOMFailureOf([&] { NewTag(document.root, "a", "x", 1, false, nullptr); }),
                  "0: Memory error");
        EXPECT_EQ(DOMFailureOf([&] { NewTag(document.root, "a", "x", 1, true, nullptr); }),
                  "0: Memory error");
        EXPECT_EQ(DOMFailureOf([&] { NewTextTag(document.root, u"a", u"x", 1); }), "0: Memory error");
        EXPECT_EQ(DOMFailureOf([&] { WriteBits(document.root, "a", 1, names, 1); }), "0: Memory error");
    }
    EXPECT_EQ(Shown(document.root), "");
}

TEST(TagBuilders, LeaveATagThatIsNotFinishedOutOfTheTree)
{
    BarrenDocument document;
    document.textsToMake = 1;
    EXPECT_EQ(DOMFailureOf([&] { NewTag(document.root, "a", "x", 1, false, nullptr); }), "0: Memory error");
    document.textsToMake = 1;
    EXPECT_EQ(DOMFailureOf([&] { NewTextTag(document.root, u"a", u"x", 1); }), "0: Memory error");
    EXPECT_EQ(Shown(document.root), "");
    const BitNames names[] = {{1, "a b"}, {0, nullptr}};
    EXPECT_THROW(WriteBits(document.root, "a", 1, names, 1), xercesc_3_0::DOMException);
    EXPECT_EQ(Shown(document.root), "");
}

TEST(NewTextTag, WritesATextNode)
{
    const Tree tree;
    const DOMElement* const narrow = NewTextTag(tree.root, "a", "x", 1);
    NewTextTag(tree.root, "b", nullptr, 1);
    const DOMElement* const wide = NewTextTag(tree.root, u"c", u"y]]>", 1);
    NewTextTag(tree.root, u"d", u"", 1);
    EXPECT_EQ(Shown(tree.root), "{\\t}a({x}){\\n}{\\t}b(){\\n}{\\t}c({y]]>}){\\n}{\\t}d({}){\\n}");
    EXPECT_EQ(narrow, tree.Find(u"a"));
    EXPECT_EQ(wide, tree.Find(u"c"));
}

TEST(NewStringTag, WritesAQuotedCDATASection)
{
    const Tree tree;
    const DOMElement* const tag = NewStringTag(tree.root, "s", "abc", 1);
    EXPECT_EQ(Shown(tree.root), "{\\t}s([\"abc\"]){\\n}");
    EXPECT_EQ(tag, tree.Find(u"s"));
}

TEST(NewStringTag, QuotesAndSeparatesWhatWouldEndTheSection)
{
    const Tree tree;
    NewStringTag(tree.root, "a", "say \"x\"", 0);
    NewStringTag(tree.root, "b", "a]]>b", 0);
    NewStringTag(tree.root, "c", "a]]", 0);
    EXPECT_EQ(Shown(tree.root), "{}a(['say \"x\"']){\\n}{}b([\"a]] >b\"]){\\n}{}c([\"a]] \"]){\\n}");
}

TEST(NewStringTag, WritesAnEmptyStringForNull)
{
    const Tree tree;
    const char* const noText = nullptr;
    const unsigned short* const noUnits = nullptr;
    const char16_t* const noCharacters = nullptr;
    NewStringTag(tree.root, "a", noText, 0);
    NewStringTag(tree.root, "b", noUnits, 0);
    NewStringTag(tree.root, "c", noCharacters, 0);
    NewStringTag(tree.root, "d", nullptr, 0);
    EXPECT_EQ(Shown(tree.root), "{}a([\"\"]){\\n}{}b([\"\"]){\\n}{}c([\"\"]){\\n}{}d([\"\"]){\\n}");
}

TEST(NewStringTag, TakesUTF16)
{
    const Tree tree;
    NewStringTag(tree.root, "a", Units(u"\u4E2D").data(), 0);
    NewStringTag(tree.root, "b", u"\U0001F600", 0);
    EXPECT_EQ(Shown(tree.root), "{}a([\"中\"]){\\n}{}b([\"😀\"]){\\n}");
}

TEST(NewStringWLenTag, TakesTheFirstUnits)
{
    const Tree tree;
    const unsigned short unterminated[] = {'a', 'b', 'c'};
    NewStringWLenTag(tree.root, "a", unterminated, 3, 0);
    NewStringWLenTag(tree.root, "b", unterminated, 2, 0);
    NewStringWLenTag(tree.root, "c", u"abc", 1, 0);
    NewStringWLenTag(tree.root, "d", unterminated, 0, 0);
    NewStringWLenTag(tree.root, "e", unterminated, -1, 0);
    NewStringWLenTag(tree.root, "f", nullptr, 5, 0);
    EXPECT_EQ(Shown(tree.root), "{}a([\"abc\"]){\\n}{}b([\"ab\"]){\\n}{}c([\"a\"]){\\n}"
                                "{}d([\"\"]){\\n}{}e([\"\"]){\\n}{}f([\"\"]){\\n}");
}

TEST(NewStringWLenTag, StopsAtTheFirstZero)
{
    const Tree tree;
    NewStringWLenTag(tree.root, "a", u"ab\0cd", 5, 0);
    NewStringWLenTag(tree.root, "b", Units(u"ab").data(), 3, 0);
    EXPECT_EQ(Shown(tree.root), "{}a([\"ab\"]){\\n}{}b([\"ab\"]){\\n}");
}

TEST(NewStringWLenTag, TakesTextOfEveryLength)
{
    const std::u16string text(1000, u'x');
    const std::vector<unsigned short> units = Units(text);
    for (const int length : {254, 255, 256, 257, 1000})
    {
        const Tree tree;
        NewStringWLenTag(tree.root, "a", units.data(), length, 0);
        NewStringWLenTag(tree.root, "b", text.data(), length, 0);
        const std::string expected(static_cast<size_t>(length), 'x');
        EXPECT_EQ(Shown(tree.root), "{}a([\"" + expected + "\"]){\\n}{}b([\"" + expected + "\"]){\\n}");
    }
}

// Numbers and booleans.

TEST(NewSLongTag, WritesSignedNumbers)
{
    const Tree tree;
    NewSLongTag(tree.root, "a", -1, 1);
    NewSLongTag(tree.root, "b", std::numeric_limits<int>::min(), 0);
    EXPECT_EQ(Shown(tree.root), "{\\t}a({-1}){\\n}{}b({-2147483648}){\\n}");
}

TEST(NewULongTag, WritesUnsignedNumbers)
{
    const Tree tree;
    NewULongTag(tree.root, "a", 4294967295u, 1);
    EXPECT_EQ(Shown(tree.root), "{\\t}a({4294967295}){\\n}");
}

std::string DoubleText(double value)
{
    const Tree tree;
    const DOMElement* const tag = NewDoubleTag(tree.root, "d", value, 0);
    return Visible(tag->getTextContent());
}

TEST(NewDoubleTag, WritesUpToTwelveDigits)
{
    EXPECT_EQ(DoubleText(0.1), "0.1");
    EXPECT_EQ(DoubleText(1.0 / 3), "0.333333333333");
    EXPECT_EQ(DoubleText(-2.0 / 3), "-0.666666666667");
    EXPECT_EQ(DoubleText(123456789012.4), "123456789012");
    EXPECT_EQ(DoubleText(100000), "100000");
    EXPECT_EQ(DoubleText(0.0001), "0.0001");
    EXPECT_EQ(DoubleText(0), "0");
}

TEST(NewDoubleTag, WritesExponentsWithThreeDigits)
{
    EXPECT_EQ(DoubleText(1e-5), "1e-005");
    EXPECT_EQ(DoubleText(1e12), "1e+012");
    EXPECT_EQ(DoubleText(-1.5e-10), "-1.5e-010");
    EXPECT_EQ(DoubleText(1e100), "1e+100");
    EXPECT_EQ(DoubleText(std::numeric_limits<double>::min()), "2.22507385851e-308");
}

TEST(NewDoubleTag, WritesNegativeZeroWithoutASign)
{
    EXPECT_EQ(DoubleText(-0.0), "0");
    EXPECT_EQ(DoubleText(-1e-300), "-1e-300");
}

TEST(NewDoubleTag, WritesInfinitiesAndNaNAsTheCLibraryDoes)
{
    EXPECT_EQ(DoubleText(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(DoubleText(-std::numeric_limits<double>::infinity()), "-inf");
    EXPECT_EQ(DoubleText(std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST(BooleanTags, WriteTheirWords)
{
    const Tree tree;
    NewBoolTag(tree.root, "a", 0, 1);
    NewBoolTag(tree.root, "b", 2, 1);
    NewLegacyBoolTag(tree.root, "c", 0, 1);
    NewLegacyBoolTag(tree.root, "d", 255, 1);
    EXPECT_EQ(Shown(tree.root), "{\\t}a({false}){\\n}{\\t}b({true}){\\n}{\\t}c({no}){\\n}{\\t}d({yes}){\\n}");
}

// Bits.

const BitNames Names[] = {{1, "a"}, {2, "b"}, {4, "c"}, {0, nullptr}};

TEST(WriteBits, WritesNothingForZero)
{
    const Tree tree;
    WriteBits(tree.root, "bits", 0, Names, 1);
    EXPECT_EQ(Shown(tree.root), "");
}

TEST(WriteBits, WritesAnEmptyTagForEachBit)
{
    const Tree tree;
    WriteBits(tree.root, "bits", 5, Names, 1);
    EXPECT_EQ(Shown(tree.root), "{\\t}bits({\\n}{\\t\\t}a(){\\n}{\\t\\t}c(){\\n}{\\t}){\\n}");
}

TEST(WriteBits, DropsBitsWithoutARow)
{
    const Tree tree;
    WriteBits(tree.root, "bits", 8, Names, 0);
    EXPECT_EQ(Shown(tree.root), "{}bits({\\n}{}){\\n}");
}

TEST(WriteBits, FollowsTheTableAndWritesARowOnce)
{
    const Tree tree;
    const BitNames names[] = {{0x80000000u, "high"}, {3, "low"}, {1, "one"}, {0, "end"}, {4, "beyond"}};
    WriteBits(tree.root, "bits", 0x80000007u, names, 0);
    EXPECT_EQ(Shown(tree.root), "{}bits({\\n}{\\t}high(){\\n}{\\t}low(){\\n}{\\t}one(){\\n}{}){\\n}");
}

} // namespace
