#include "tests/NuvXMLUtils/DOMHelperTrees.hpp"
#include "tests/support/LocalCodePageScope.hpp"

#include <limits>
#include <random>

namespace
{

using namespace NuvTest;
using namespace NuvXMLUtils;

std::string AttributeText(const Tree& tree, const char16_t* name)
{
    return Visible(tree.root->getAttribute(name));
}

TEST(AttributeSetters, WriteNumbersAndWords)
{
    const Tree tree;
    SetSLongAttr(tree.root, "s", -1);
    SetULongAttr(tree.root, "u", 4294967295u);
    SetBooleanAttr(tree.root, "t", true);
    SetBooleanAttr(tree.root, "f", false);
    SetLegacyBooleanAttr(tree.root, "y", true);
    SetLegacyBooleanAttr(tree.root, "n", false);
    EXPECT_EQ(AttributeText(tree, u"s"), "-1");
    EXPECT_EQ(AttributeText(tree, u"u"), "4294967295");
    EXPECT_EQ(AttributeText(tree, u"t"), "true");
    EXPECT_EQ(AttributeText(tree, u"f"), "false");
    EXPECT_EQ(AttributeText(tree, u"y"), "yes");
    EXPECT_EQ(AttributeText(tree, u"n"), "no");
}

TEST(AttributeSetters, ReplaceTheOldValue)
{
    const Tree tree("<r a='x'/>");
    SetSLongAttr(tree.root, "a", 5);
    EXPECT_EQ(AttributeText(tree, u"a"), "5");
}

TEST(AttributeSetters, LetTheExceptionForAForbiddenNamePass)
{
    const Tree tree;
    EXPECT_THROW(SetSLongAttr(tree.root, "a b", 1), xercesc_3_0::DOMException);
    EXPECT_THROW(SetULongAttr(tree.root, "", 1), xercesc_3_0::DOMException);
    EXPECT_THROW(SetBooleanAttr(tree.root, "1", true), xercesc_3_0::DOMException);
    EXPECT_THROW(SetLegacyBooleanAttr(tree.root, "<", true), xercesc_3_0::DOMException);
}

TEST(AttributeFunctions, TakeEightBitNamesInTheLocalCodePage)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree;
    SetSLongAttr(tree.root, "\xF6", 5);
    EXPECT_EQ(AttributeText(tree, u"ö"), "5");
    EXPECT_EQ(GetSLongAttr(tree.root, "\xF6"), 5);
    EXPECT_EQ(GetSLongAttr(tree.root, u"ö"), 5);
}

/// The message for an attribute `x` with the given value, or no such attribute for null.
template <class Get>
std::string MessageFor(const char16_t* value, Get get)
{
    const Tree tree;
    if (value)
        tree.root->setAttribute(u"x", value);
    return ConvMessageOf([&] { get(tree.root, Nuv::UniString(u"x")); });
}

constexpr auto GetSLong = [](auto... arguments) { return GetSLongAttr(arguments...); };
constexpr auto GetULong = [](auto... arguments) { return GetULongAttr(arguments...); };
constexpr auto GetBoolean = [](auto... arguments) { return GetBooleanAttr(arguments...); };

TEST(AttributeGetters, ReadNumbers)
{
    const Tree tree("<r a='+7' b=' &#9;-2147483648&#9; ' c='4294967295' d='+2147483647'/>");
    EXPECT_EQ(GetULongAttr(tree.root, u"a"), 7u);
    EXPECT_EQ(GetSLongAttr(tree.root, u"b"), std::numeric_limits<int>::min());
    EXPECT_EQ(GetULongAttr(tree.root, "c"), 4294967295u);
    EXPECT_EQ(GetSLongAttr(tree.root, "d"), 2147483647);
}

TEST(AttributeGetters, NameTheAttributeInTheirMessages)
{
    EXPECT_EQ(MessageFor(u"-7", GetULong), "Attribute: 'x' (missing or incorrect); Too many data");
    EXPECT_EQ(MessageFor(u"4294967296", GetULong), "Attribute: 'x' (missing or incorrect); Integer Overflow");
    EXPECT_EQ(MessageFor(u"-2147483649", GetSLong),
              "Attribute: 'x' (missing or incorrect); Integer Underflow");
    EXPECT_EQ(MessageFor(u"1\n", GetSLong), "Attribute: 'x' (missing or incorrect); Too many data");
    EXPECT_EQ(MessageFor(u"Yes", GetBoolean), "Attribute: 'x' (missing or incorrect); "
                                              "'yes/true' or 'no/false' expected, 'Yes' found");
}

TEST(AttributeGetters, TakeAMissingAttributeForAnEmptyOne)
{
    for (const char16_t* value : {static_cast<const char16_t*>(nullptr), u"", u" \t"})
    {
        EXPECT_EQ(MessageFor(value, GetSLong), "Attribute: 'x' (missing or incorrect); ");
        EXPECT_EQ(MessageFor(value, GetULong), "Attribute: 'x' (missing or incorrect); ");
        EXPECT_EQ(MessageFor(value, GetBoolean), "Attribute: 'x' (missing or incorrect); "
                                                 "'yes/true' or 'no/false' expected, '' found");
    }
}

TEST(AttributeGetters, TellTheLineOfTheElement)
{
    const Tree tree("<r>\n<a n='x'/></r>");
    EXPECT_EQ(ConvExceptionOf([&] { GetSLongAttr(tree.Find(u"a"), "n"); }).line, 2u);
    EXPECT_EQ(ConvExceptionOf([&] { GetULongAttr(tree.Find(u"a"), "n"); }).line, 2u);
    EXPECT_EQ(ConvExceptionOf([&] { GetBooleanAttr(tree.Find(u"a"), "n"); }).line, 2u);
}

TEST(AttributeGetters, PassOnTheFailureToConvertTheValueAsItIs)
{
    const LocalCodePageScope codePage("windows-1252");
    const Tree tree("<r n='\xE4\xB8\xAD'/>");
    const ConvException exception = ConvExceptionOf([&] { GetSLongAttr(tree.root, "n"); });
    EXPECT_EQ(exception.message, u"Failed to transcode string.");
    EXPECT_EQ(exception.line, 0u);
}

TEST(AttributeGetters, ShowAValueOfTheLocalCodePageInTheirMessages)
{
    const LocalCodePageScope codePage("windows-1252");
    EXPECT_EQ(MessageFor(u"\u20AC", GetBoolean), "Attribute: 'x' (missing or incorrect); "
                                                 "'yes/true' or 'no/false' expected, '€' found");
}

TEST(GetBooleanAttr, KnowsThreeWordsForEachValue)
{
    const Tree tree("<r a=' yes&#9;' b='true' c='1' d='no' e='false' f='0'/>");
    for (const char* name : {"a", "b", "c"})
        EXPECT_TRUE(GetBooleanAttr(tree.root, name)) << name;
    for (const char* name : {"d", "e", "f"})
        EXPECT_FALSE(GetBooleanAttr(tree.root, name)) << name;
}

TEST(AttributeFunctions, ReadBackEveryGeneratedNumber)
{
    std::mt19937 random(13);
    const Tree tree;
    for (int i = 0; i < 2000; ++i)
    {
        const auto number = static_cast<unsigned int>(random()) >> (random() % 32);
        SetULongAttr(tree.root, "u", number);
        SetSLongAttr(tree.root, "s", static_cast<int>(number));
        SetBooleanAttr(tree.root, "b", number % 2 == 0);
        SetLegacyBooleanAttr(tree.root, "l", number % 2 == 0);
        ASSERT_EQ(GetULongAttr(tree.root, "u"), number);
        ASSERT_EQ(GetSLongAttr(tree.root, "s"), static_cast<int>(number));
        ASSERT_EQ(GetBooleanAttr(tree.root, "b"), number % 2 == 0);
        ASSERT_EQ(GetBooleanAttr(tree.root, "l"), number % 2 == 0);
    }
}

} // namespace
