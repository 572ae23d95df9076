// Tests with the matchers of the installed package.

#include <NuvXMLUtils/testing/XMLMatchers.hpp>

#include <gtest/gtest.h>

#include <string>

TEST(InstalledMatchers, MatchEqualDocuments)
{
    EXPECT_THAT("<Wall>\n<Height>275.0</Height></Wall>",
                NuvXML::EqualsXML("<Wall><Height>275</Height></Wall>"));
}

TEST(InstalledMatchers, TellADifference)
{
    testing::StringMatchResultListener listener;
    EXPECT_FALSE(
        NuvXML::EqualsXML("<Height>275</Height>").MatchAndExplain("<Height>276</Height>", &listener));
    EXPECT_NE(listener.str().find("line 1, /Height/text(): <Height>276</Height>"), std::string::npos)
        << listener.str();
}
