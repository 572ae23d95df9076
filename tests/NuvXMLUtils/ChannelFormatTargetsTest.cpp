#include "NuvXMLUtils/ChannelFormatTargets.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace
{

/// Keeps each block that it is given; tells an error at one of them.
template <class Base>
class RecordingChannel : public Base
{
  public:
    int Write(const void* bytes, size_t count) override
    {
        blocks.emplace_back(static_cast<const char*>(bytes), count);
        return blocks.size() == failAt ? ErrorCode : 0;
    }

    static constexpr int ErrorCode = 17;
    size_t failAt = 0;
    std::vector<std::string> blocks;
};

template <class Types>
class ChannelFormatTargetsTest : public testing::Test
{
  protected:
    void Write(std::string_view bytes)
    {
        target.writeChars(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), nullptr);
    }

    typename Types::Channel channel;
    typename Types::Target target{channel};
};

template <class TargetClass, class ChannelClass>
struct TargetAndChannel
{
    using Target = TargetClass;
    using Channel = RecordingChannel<ChannelClass>;
};

using TargetsAndChannels =
    testing::Types<TargetAndChannel<NuvXML::OChannelXMLFormatTarget, Nuv::OChannel>,
                   TargetAndChannel<NuvXML::OBinaryChannelXMLFormatTarget, Nuv::OBinaryChannel>>;
TYPED_TEST_SUITE(ChannelFormatTargetsTest, TargetsAndChannels);

TYPED_TEST(ChannelFormatTargetsTest, WriteEachBlockAtOnce)
{
    this->Write("ab");
    EXPECT_EQ(this->channel.blocks, (std::vector<std::string>{"ab"}));
    this->Write(std::string_view("\0c", 2));
    EXPECT_EQ(this->channel.blocks, (std::vector<std::string>{"ab", std::string("\0c", 2)}));
    EXPECT_EQ(this->target.GetErrorCode(), 0);
}

TYPED_TEST(ChannelFormatTargetsTest, KeepTheErrorOfTheChannelAndDropLaterOutput)
{
    this->channel.failAt = 2;
    this->Write("a");
    this->Write("b");
    this->Write("c");
    EXPECT_EQ(this->channel.blocks, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(this->target.GetErrorCode(), 17);
}

} // namespace
