#include "InputOutput/RelativeLocation.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string_view>

namespace
{

using namespace std::string_view_literals;
using IO::Name;
using IO::RelativeLocation;

RelativeLocation LocationOf(std::initializer_list<std::u16string_view> names)
{
    RelativeLocation location;
    for (const std::u16string_view name : names)
        location.AppendToLocal(Name(name));
    return location;
}

TEST(RelativeLocation, IsEmptyWithoutNames)
{
    EXPECT_TRUE(RelativeLocation().IsEmpty());
    EXPECT_EQ(RelativeLocation().ToURL(), u"file://");
    EXPECT_FALSE(RelativeLocation(Name(u"a")).IsEmpty());
}

TEST(RelativeLocation, JoinsItsNamesToAURL)
{
    EXPECT_EQ(RelativeLocation(Name(u"a")).ToURL(), u"file://a");
    EXPECT_EQ(LocationOf({u"a", u"b", u"c"}).ToURL(), u"file://a/b/c");
}

TEST(RelativeLocation, GrowsByNamesAndLocations)
{
    RelativeLocation location(Name(u"a"));
    location.AppendToLocal(LocationOf({u"b", u"c"}));
    location.AppendToLocal(Name(u"d"));
    location.AppendToLocal(RelativeLocation());
    EXPECT_EQ(location, LocationOf({u"a", u"b", u"c", u"d"}));
}

TEST(RelativeLocation, GrowsByItself)
{
    RelativeLocation location = LocationOf({u"a", u"b"});
    location.AppendToLocal(location);
    EXPECT_EQ(location.ToURL(), u"file://a/b/a/b");
}

TEST(RelativeLocation, KeepsNamesReadableInAURL)
{
    EXPECT_EQ(LocationOf({u"#text", u"a b", u"\u00E4\u4E2D\U0001F600", u"p:q?x=\"<&>'"}).ToURL(),
              u"file://#text/a b/\u00E4\u4E2D\U0001F600/p:q?x=\"<&>'");
}

TEST(RelativeLocation, EncodesPercentSignsSlashesAndControlCharacters)
{
    EXPECT_EQ(LocationOf({u"100%", u"%41", u"a/b", u"\t\n\x7F"}).ToURL(),
              u"file://100%25/%2541/a%2Fb/%09%0A%7F");
    EXPECT_EQ(LocationOf({u"a\0b"sv}).ToURL(), u"file://a%00b");
}

TEST(RelativeLocation, IsEqualByItsNames)
{
    EXPECT_TRUE(LocationOf({u"a", u"b"}) == LocationOf({u"a", u"b"}));
    EXPECT_TRUE(LocationOf({u"a", u"b"}) != LocationOf({u"b", u"a"}));
    EXPECT_TRUE(LocationOf({u"a", u"b"}) != LocationOf({u"a/b"}));
    EXPECT_TRUE(RelativeLocation() == LocationOf({}));
}

} // namespace
