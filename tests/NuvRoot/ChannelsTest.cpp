#include "NuvRoot/Channels.hpp"

#include <gtest/gtest.h>

#include <type_traits>

namespace
{

using namespace std::string_literals;

template <class Channel>
class MemoryChannels : public testing::Test
{
};
using Channels = testing::Types<Nuv::MemoryOChannel, Nuv::MemoryOBinaryChannel>;
TYPED_TEST_SUITE(MemoryChannels, Channels);

TYPED_TEST(MemoryChannels, CollectWhatIsWritten)
{
    TypeParam channel;
    EXPECT_EQ(channel.GetBytes(), "");
    EXPECT_EQ(channel.Write("one", 3), 0);
    EXPECT_EQ(channel.Write("\0\xFF", 2), 0);
    EXPECT_EQ(channel.Write("two", 2), 0);
    EXPECT_EQ(channel.GetBytes(), "one\0\xFFtw"s);
}

TYPED_TEST(MemoryChannels, TakeNoBytesFromANullPointer)
{
    TypeParam channel;
    EXPECT_EQ(channel.Write(nullptr, 0), 0);
    EXPECT_EQ(channel.GetBytes(), "");
}

TEST(Channels, AreAbstractAndOfTwoKinds)
{
    EXPECT_TRUE(std::is_abstract_v<Nuv::OChannel>);
    EXPECT_TRUE(std::is_abstract_v<Nuv::OBinaryChannel>);
    EXPECT_TRUE(std::is_abstract_v<Nuv::IChannel>);
    EXPECT_TRUE((std::is_base_of_v<Nuv::OChannel, Nuv::MemoryOChannel>));
    EXPECT_TRUE((std::is_base_of_v<Nuv::OBinaryChannel, Nuv::MemoryOBinaryChannel>));
    EXPECT_FALSE((std::is_base_of_v<Nuv::OChannel, Nuv::OBinaryChannel>));
    EXPECT_FALSE((std::is_base_of_v<Nuv::OBinaryChannel, Nuv::OChannel>));
}

TEST(Channels, AreDestroyedThroughTheirBase)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<Nuv::OChannel>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Nuv::OBinaryChannel>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Nuv::IChannel>);
}

} // namespace
