/// @file
/// Makes chosen allocations of the program fail. A test program that links FailingAllocator.cpp has its
/// global operator new replaced, for all libraries that it uses; like the standard one it calls the
/// new-handler, so that a failing `new` throws what it throws in the application.
#pragma once

#include "NuvRoot/Exceptions.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace NuvTest::FailingAllocator
{

/// Which allocations fail from the chosen one on.
enum class Mode
{
    Once,     ///< that one only
    FromThere ///< that one and all that follow
};

/// Makes the allocation number `nth` from now on fail; the next one is number 1.
void FailAt(long nth, Mode mode);

/// From now on all allocations succeed. Gives whether one had failed since FailAt.
bool Disarm();

/// How many blocks are allocated.
long GetNumberOfBlocks();

/// Lets allocations succeed while it lives, so that a test can look at results in between.
class Pause
{
  public:
    Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause();

  private:
    bool wasArmed;
};

/// Expects that the call succeeds or throws the application's exception for lack of memory.
template <class Call>
void ExpectOutOfMemoryOnly(Call call)
{
    try
    {
        call();
    }
    catch (const Nuv::OutOfMemoryException&)
    {
    }
}

/// Runs `operation` again and again, with its first allocation failing, then its second and so on, until it
/// runs through. The operation catches what it expects to be thrown.
/// @return how many blocks each of these runs left behind
template <class Operation>
std::vector<long> LeaksOf(Operation operation, Mode mode)
{
    operation(); // what is allocated once a process is no leak
    std::vector<long> leaks;
    for (bool hasFailed = true; hasFailed;)
    {
        const long before = GetNumberOfBlocks();
        FailAt(static_cast<long>(leaks.size()) + 1, mode);
        try
        {
            operation();
        }
        catch (...)
        {
            Disarm();
            throw;
        }
        hasFailed = Disarm();
        const long after = GetNumberOfBlocks();
        leaks.push_back(after - before);
    }
    return leaks;
}

/// Expects that the operation survives each failing allocation and leaves nothing behind.
/// @return how many of its allocations were made to fail
template <class Operation>
size_t Sweep(Operation operation)
{
    size_t failures = 0;
    for (const Mode mode : {Mode::Once, Mode::FromThere})
    {
        const std::vector<long> leaks = LeaksOf(operation, mode);
        EXPECT_THAT(leaks, testing::Each(0));
        failures = leaks.size() - 1;
    }
    return failures;
}

/// Sweeps an operation on a value, a copy of `original` in each run. Expects that allocations fail, that each
/// is told by the application's exception, and that the value then is as it was.
template <class T, class Operation>
void SweepKeeping(const T& original, Operation operation)
{
    const size_t failures = Sweep(
        [&]
        {
            std::unique_ptr<T> value;
            {
                const Pause pause;
                value = std::make_unique<T>(original);
            }
            bool hasFailed = true;
            ExpectOutOfMemoryOnly(
                [&]
                {
                    operation(*value);
                    hasFailed = false;
                });
            const Pause pause;
            EXPECT_TRUE(!hasFailed || *value == original);
            value.reset();
        });
    EXPECT_GT(failures, 0u);
}

/// The same where a library below is known to leave blocks behind when an allocation fails in it: expects
/// that the operation leaves exactly those that the bare calls of that library leave.
template <class Operation, class BareCalls>
void SweepBeside(BareCalls bareCalls, Operation operation)
{
    for (const Mode mode : {Mode::Once, Mode::FromThere})
    {
        std::vector<long> expected = LeaksOf(bareCalls, mode);
        std::vector<long> actual = LeaksOf(operation, mode);
        std::erase(expected, 0);
        std::erase(actual, 0);
        EXPECT_THAT(actual, testing::ElementsAreArray(expected));
    }
}

} // namespace NuvTest::FailingAllocator
