#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/CommaLocale.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <cstdio>

/// The C library loses a few bytes whenever it makes a locale from a folder of the caller's.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:argz_add_sep"; }

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;

/// What a function that follows the C locale makes of the number.
std::string PrintedByTheCLibrary(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

/// Runs with a decimal comma, and with a point between digits taken for a separator of thousands.
class DOMHelpersInACommaLocale : public testing::Test
{
  protected:
    void SetUp() override { ASSERT_EQ(PrintedByTheCLibrary(1.5), "1,5"); }

    const CommaLocale locale;
    const Tree tree;
};

TEST_F(DOMHelpersInACommaLocale, WriteNumbersWithAPoint)
{
    NewDoubleTag(tree.root, "d", 1234567.25, 0);
    NewDoubleTag(tree.root, "e", 1.5e-7, 0);
    NewSLongTag(tree.root, "s", -1234567, 0);
    NewULongTag(tree.root, "u", 1234567, 0);
    WriteLongElement(tree.root, u"l", -1234567, 0);
    EXPECT_EQ(Shown(tree.root), "{}d({1234567.25}){\\n}{}e({1.5e-007}){\\n}{}s({-1234567}){\\n}"
                                "{}u({1234567}){\\n}{}l({-1234567}){\\r\\n}");
}

TEST_F(DOMHelpersInACommaLocale, ReadNumbersWithAPoint)
{
    EXPECT_EQ(GetDouble("1.5"), 1.5);
    EXPECT_EQ(ConvMessageOf([] { GetDouble("1,5"); }), "Too many data");
    EXPECT_EQ(GetDoubleTag(NewDoubleTag(tree.root, "d", 1234567.25, 0)), 1234567.25);
    const Tree comma("<d>1,5</d>");
    EXPECT_EQ(ConvMessageOf([&] { GetDoubleTag(comma.root); }), "Tag 'd'; Too many data");
}

TEST_F(DOMHelpersInACommaLocale, ReadIntegersWithoutGrouping)
{
    const Tree grouped("<l>1.234</l>");
    int number = 0;
    EXPECT_TRUE(ReadLongNode(grouped.root, u"l", number));
    EXPECT_EQ(number, 1);
    EXPECT_EQ(ConvMessageOf([&] { GetSLongTag(grouped.root); }), "Tag 'l'; Too many data");
}

/// The byte is a no-break space in the code set of the locale.
TEST_F(DOMHelpersInACommaLocale, KnowNoFurtherWhiteSpace)
{
    EXPECT_EQ(ConvMessageOf(
                  []
                  {
                      GetDouble("\xA0"
                                "1.5");
                  }),
              "Floating point number error");
}

/// Runs with a local code page that holds ASCII in another way.
class DOMHelpersInEBCDIC : public testing::Test
{
  protected:
    const LocalCodePageScope codePage{"ibm-37"};
    const Tree tree;
};

TEST_F(DOMHelpersInEBCDIC, ReadBackTheNumbersThatTheyWrite)
{
    WriteLongElement(tree.root, u"l", -42, 0);
    WriteBooleanElement(tree.root, u"b", true, 0);
    EXPECT_EQ(Shown(tree.root), "{}l({-42}){\\r\\n}{}b({1}){\\r\\n}");
    int number = 0;
    EXPECT_TRUE(ReadLongNode(tree.Find(u"l"), u"l", number));
    EXPECT_EQ(number, -42);
    bool flag = false;
    EXPECT_TRUE(ReadBooleanNode(tree.Find(u"b"), u"b", flag));
    EXPECT_TRUE(flag);
}

TEST_F(DOMHelpersInEBCDIC, TellTheirFailuresInPlainText)
{
    EXPECT_EQ(ConvMessageOf([] { GetIntNum("x"); }), "Too many data");
    EXPECT_EQ(ConvMessageOf([] { UnicodeToString(u"", true); }), "Failed to transcode string.");
}

TEST_F(DOMHelpersInEBCDIC, DecodeNothingButTheReferenceOfAStyleSheet)
{
    EXPECT_TRUE(WriteStyleSheet(tree.document.get(), "\x81\x82"));
    EXPECT_EQ(Shown(tree.document.get()), "?xml-stylesheet type=\"text/xsl\" href=\"ab\" ?r()");
}

/// CR LF is 0D 25.
TEST_F(DOMHelpersInEBCDIC, EndTheLinesOfACDATASectionWithCRLF)
{
    const Tree lines("<s><![CDATA[a\nb]]></s>");
    EXPECT_EQ(Taken(GetCDATANode(lines.root)), "\x81\r\x25\x82");
}

TEST_F(DOMHelpersInEBCDIC, RefuseEightBitValuesAndReadUnicodeOnes)
{
    const Tree values("<r a='1'><n>1</n><s><![CDATA['x']]></s></r>");
    EXPECT_EQ(ConvMessageOf([&] { GetSLongTag(values.Find(u"n")); }), "Tag 'n'; Too many data");
    EXPECT_EQ(ConvMessageOf([&] { GetSLongAttr(values.root, u"a"); }),
              "Attribute: 'a' (missing or incorrect); Too many data");
    EXPECT_EQ(ConvMessageOf([&] { GetStringTag(values.Find(u"s")); }), "Tag 's'; String value error");
    EXPECT_EQ(GetTagTextU(values.Find(u"n")), u"1");
    EXPECT_EQ(Taken(GetStringTagU(values.Find(u"s"))), u"x");
}

} // namespace
