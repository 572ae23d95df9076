/// @file
/// Channels of which chosen writes fail.
#pragma once

#include "NuvRoot/Channels.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace NuvTest
{

enum class Failure
{
    Code,     ///< the write tells an error
    Exception ///< the write throws a std::runtime_error
};

/// Collects what is written. One write, chosen beforehand, takes half of its bytes and fails, like a device
/// that has become full.
template <class Base>
class FailingChannel : public Base
{
  public:
    static constexpr int ErrorCode = 17;

    /// @param failingWrite the first write is number 1; none fails when it is 0
    explicit FailingChannel(size_t failingWrite, Failure how = Failure::Code)
        : failAt(failingWrite)
        , failure(how)
    {
    }

    int Write(const void* bytes, size_t count) override
    {
        const bool fails = ++writes == failAt;
        taken.append(static_cast<const char*>(bytes), fails ? count / 2 : count);
        if (fails && failure == Failure::Exception)
            throw std::runtime_error("full");
        return fails ? ErrorCode : 0;
    }

    bool HasFailed() const { return failAt != 0 && writes >= failAt; }

    size_t writes = 0;
    std::string taken;

  private:
    size_t failAt;
    Failure failure;
};

using FailingOChannel = FailingChannel<Nuv::OChannel>;
using FailingOBinaryChannel = FailingChannel<Nuv::OBinaryChannel>;

/// What a channel takes that never fails; it must need at least `leastWrites` writes.
template <class Channel, class Writer>
std::string WrittenBy(Writer write, size_t leastWrites, size_t& writes)
{
    Channel healthy(0);
    write(healthy);
    EXPECT_GE(healthy.writes, leastWrites);
    writes = healthy.writes;
    return healthy.taken;
}

/// Has the first write to the channel fail, then the second and so on. Expects that the channel is not called
/// again, and has taken the beginning of what it takes when none fails.
/// @param write writes to the channel that it is given, and then looks at the outcome
template <class Channel, class Writer>
void ExpectToStopAtEachFailure(Writer write, size_t leastWrites)
{
    size_t writes = 0;
    const std::string whole = WrittenBy<Channel>(write, leastWrites, writes);
    for (size_t failing = 1; failing <= writes; ++failing)
    {
        Channel channel(failing);
        write(channel);
        EXPECT_EQ(channel.writes, failing);
        EXPECT_TRUE(whole.starts_with(channel.taken) && channel.taken.size() < whole.size())
            << "write " << failing;
    }
}

/// The same with writes that throw; the exception reaches the caller.
template <class Channel, class Writer>
void ExpectEachExceptionToPass(Writer write, size_t leastWrites)
{
    size_t writes = 0;
    const std::string whole = WrittenBy<Channel>(write, leastWrites, writes);
    for (size_t failing = 1; failing <= writes; ++failing)
    {
        Channel channel(failing, Failure::Exception);
        EXPECT_THROW(write(channel), std::runtime_error);
        EXPECT_EQ(channel.writes, failing);
        EXPECT_TRUE(whole.starts_with(channel.taken)) << "write " << failing;
    }
}

} // namespace NuvTest
