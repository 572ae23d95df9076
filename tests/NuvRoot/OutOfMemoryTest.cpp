#include "NuvRoot/Exceptions.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

// The standard's default allocation functions: some memory checkers end the process where these call the
// new-handler. They refuse by themselves what no checker may be asked for.

void* operator new(std::size_t size)
{
    constexpr std::size_t Largest = std::size_t{1} << 40;
    for (;;)
    {
        if (size <= Largest)
            if (void* memory = std::malloc(size))
                return memory;
        const std::new_handler handler = std::get_new_handler();
        if (!handler)
            throw std::bad_alloc();
        handler();
    }
}

void* operator new[](std::size_t size) { return operator new(size); }

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try
    {
        return operator new(size);
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace
{

/// Not a constant, so that the compiler lets it pass.
volatile std::size_t impossibleSize =
    static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) - 4096;

void AllocateTheImpossible()
{
    char* volatile kept = new char[impossibleSize];
    delete[] kept;
}

TEST(OutOfMemory, IsThrownByAFailingNew) { EXPECT_THROW(AllocateTheImpossible(), Nuv::OutOfMemoryException); }

TEST(OutOfMemory, IsCaughtAsAnExceptionOfTheApplication)
{
    EXPECT_THROW(AllocateTheImpossible(), Nuv::GeneralException);
    EXPECT_THROW(AllocateTheImpossible(), Nuv::NuvException);
}

TEST(OutOfMemory, IsCaughtAsBadAlloc) { EXPECT_THROW(AllocateTheImpossible(), std::bad_alloc); }

TEST(OutOfMemory, IsNullForNewThatDoesNotThrow)
{
    EXPECT_EQ(::operator new(impossibleSize, std::nothrow), nullptr);
}

TEST(OutOfMemory, IsThrownByAStringThatGrowsTooLong)
{
    const size_t nearlyTooLong = std::u16string().max_size() - 1;
    std::u16string text;
    EXPECT_THROW(text.reserve(nearlyTooLong), Nuv::OutOfMemoryException);
    EXPECT_EQ(text, u"");
}

} // namespace
