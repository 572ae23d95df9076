#include "InputOutput/Name.hpp"

#include <gtest/gtest.h>

namespace
{

using IO::Name;

TEST(Name, IsTheTextThatItIsMadeOf)
{
    EXPECT_EQ(Name().ToUniString(), u"");
    EXPECT_EQ(Name(u"a b%41 \u00E4\u4E2D.xml").ToUniString(), u"a b%41 \u00E4\u4E2D.xml");
}

TEST(Name, GetsAnExtension)
{
    Name name(u"Scratch_1");
    name.AppendExtension(u"xml");
    EXPECT_EQ(name.ToUniString(), u"Scratch_1.xml");
    name.AppendExtension(u"gz");
    EXPECT_EQ(name.ToUniString(), u"Scratch_1.xml.gz");
}

TEST(Name, IsEqualByItsText)
{
    EXPECT_TRUE(Name(u"a") == Name(u"a"));
    EXPECT_TRUE(Name(u"a") != Name(u"A"));
}

} // namespace
