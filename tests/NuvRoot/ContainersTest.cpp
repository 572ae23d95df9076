#include "NuvRoot/Containers.hpp"
#include "NuvRoot/UniString.hpp"

#include <gtest/gtest.h>

#include <type_traits>

namespace
{

TEST(Containers, AreThoseOfTheStandardLibrary)
{
    EXPECT_TRUE((std::is_same_v<Nuv::Array<int>, std::vector<int>>));
    EXPECT_TRUE((std::is_same_v<Nuv::VAArray<int>, std::vector<int>>));
    EXPECT_TRUE((std::is_same_v<Nuv::HashSet<int>, std::unordered_set<int>>));
}

TEST(Containers, HashStrings)
{
    const Nuv::HashSet<Nuv::UniString> set{u"one", u"two", u"one"};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_TRUE(set.contains(u"two"));
    EXPECT_FALSE(set.contains(u"three"));
}

} // namespace
