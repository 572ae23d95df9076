#include "NuvRoot/Guid.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace
{

using Nuv::Guid;
using Nuv::UniString;

constexpr char16_t Text[] = u"01234567-89AB-CDEF-0123-456789ABCDEF";

Guid GuidOf(const UniString& text)
{
    Guid guid;
    EXPECT_EQ(guid.ConvertFromString(text), 0) << text;
    return guid;
}

TEST(Guid, IsNullWhenDefaultConstructed)
{
    EXPECT_TRUE(Guid().IsNull());
    EXPECT_EQ(Guid().ToUniString(), u"00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(sizeof(Guid), 16u);
}

TEST(Guid, ReadsBackWhatItWrites)
{
    EXPECT_EQ(GuidOf(Text).ToUniString(), Text);
    EXPECT_FALSE(GuidOf(Text).IsNull());
}

TEST(Guid, ReadsDigitsInEitherCaseWithAndWithoutBraces)
{
    const Guid expected = GuidOf(Text);
    EXPECT_EQ(GuidOf(u"01234567-89ab-cdef-0123-456789abcdef"), expected);
    EXPECT_EQ(GuidOf(u"01234567-89Ab-cDEf-0123-456789aBCDEF"), expected);
    EXPECT_EQ(GuidOf(u"{01234567-89AB-CDEF-0123-456789ABCDEF}"), expected);
    EXPECT_EQ(GuidOf(u"{01234567-89ab-cdef-0123-456789abcdef}"), expected);
}

TEST(Guid, DiffersFromOneWithAnyOtherDigit)
{
    const Guid expected = GuidOf(Text);
    for (size_t i = 0; i < 36; ++i)
    {
        std::u16string other(Text);
        if (other[i] == u'-')
            continue;
        other[i] = other[i] == u'0' ? u'1' : u'0';
        EXPECT_NE(GuidOf(UniString(other)), expected) << UniString(other);
    }
}

class MalformedGuid : public testing::TestWithParam<const char16_t*>
{
};

TEST_P(MalformedGuid, FailsAndLeavesTheValue)
{
    Guid guid = GuidOf(Text);
    EXPECT_EQ(guid.ConvertFromString(UniString(GetParam())), -7003);
    EXPECT_EQ(guid.ToUniString(), Text);
}

INSTANTIATE_TEST_SUITE_P(
    Guid, MalformedGuid,
    testing::Values(u"", u"{}", u"01234567-89AB-CDEF-0123-456789ABCDE",
                    u"01234567-89AB-CDEF-0123-456789ABCDEF0", u"{01234567-89AB-CDEF-0123-456789ABCDEF",
                    u"01234567-89AB-CDEF-0123-456789ABCDEF}", u"(01234567-89AB-CDEF-0123-456789ABCDEF)",
                    u"{{1234567-89AB-CDEF-0123-456789ABCDEF}}", u"0123456789ABCDEF0123456789ABCDEF",
                    u"01234567089AB-CDEF-0123-456789ABCDEF", u"01234567-89AB0CDEF-0123-456789ABCDEF",
                    u"01234567-89AB-CDEF00123-456789ABCDEF", u"01234567-89AB-CDEF-01230456789ABCDEF",
                    u"0123456--89AB-CDEF-0123-456789ABCDEF", u"G1234567-89AB-CDEF-0123-456789ABCDEF",
                    u"01234567-89AB-CDEF-0123-456789ABCDEg", u" 1234567-89AB-CDEF-0123-456789ABCDEF",
                    u"\uFF101234567-89AB-CDEF-0123-456789ABCDE"));

TEST(Guid, GeneratesDifferentRandomGuids)
{
    std::set<std::string> texts;
    for (int i = 0; i < 1000; ++i)
    {
        const Guid guid = Guid::Generate();
        const UniString text = guid.ToUniString();
        EXPECT_EQ(text[14], u'4') << "version 4: " << text;
        EXPECT_NE(std::u16string_view(u"89AB").find(text[19]), std::u16string_view::npos) << text;
        EXPECT_EQ(GuidOf(text), guid);
        texts.insert(text.ToUTF8());
    }
    EXPECT_EQ(texts.size(), 1000u);
}

} // namespace
