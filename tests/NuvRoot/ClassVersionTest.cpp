#include "NuvRoot/ClassVersion.hpp"

#include <gtest/gtest.h>

#include <cstddef>

namespace
{

using Nuv::ClassVersion;

TEST(ClassVersion, IsZeroWhenDefaultConstructed)
{
    const ClassVersion version;
    EXPECT_EQ(version.majorNumber, 0);
    EXPECT_EQ(version.minorNumber, 0);
    EXPECT_EQ(version.buildNumber, 0);
}

TEST(ClassVersion, IsMadeOfMajorMinorAndBuildNumber)
{
    const ClassVersion version{1, 255, 65535};
    EXPECT_EQ(version.majorNumber, 1);
    EXPECT_EQ(version.minorNumber, 255);
    EXPECT_EQ(version.buildNumber, 65535);
}

TEST(ClassVersion, HoldsMajorAndMinorNumberInItsFirstTwoBytes)
{
    static_assert(offsetof(ClassVersion, majorNumber) == 0);
    static_assert(offsetof(ClassVersion, minorNumber) == 1);
    static_assert(offsetof(ClassVersion, buildNumber) == 2);
    EXPECT_EQ(sizeof(ClassVersion), 4u);
}

} // namespace
