#include "NuvRoot/UniString.hpp"
#include "NuvRoot/ValueText.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace
{

long allocations = 0;

} // namespace

void* operator new(std::size_t size)
{
    ++allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace
{

template <class Function>
long AllocationsOf(Function function)
{
    const long before = allocations;
    function();
    return allocations - before;
}

const std::u16string longText = u"\u00A0\u2003" + std::u16string(5000, u'A') + u"\t ";

TEST(Allocation, IsSeenByThisProgram)
{
    EXPECT_GT(AllocationsOf([] { Nuv::UniString copy(longText); }), 0);
}

TEST(Allocation, DoesNotHappenInTrimmed)
{
    size_t length = 0;
    EXPECT_EQ(AllocationsOf([&] { length = Nuv::Trimmed(longText).size(); }), 0);
    EXPECT_EQ(length, 5000u);
}

TEST(Allocation, DoesNotHappenInEqualIgnoringCase)
{
    const std::u16string other = u"\u00A0\u2003" + std::u16string(5000, u'a') + u"\t ";
    bool equal = false;
    EXPECT_EQ(AllocationsOf([&] { equal = Nuv::EqualIgnoringCase(longText, other); }), 0);
    EXPECT_TRUE(equal);
}

template <class Number>
void ExpectReadWithoutAllocation(std::u16string_view text, Number expected)
{
    Number value = 0;
    EXPECT_EQ(AllocationsOf([&] { Nuv::strtovalue(text, value); }), 0);
    EXPECT_EQ(value, expected);
}

TEST(Allocation, DoesNotHappenWhenNumbersAreRead)
{
    ExpectReadWithoutAllocation<int>(u"\u2003 -2147483648 ", -2147483647 - 1);
    ExpectReadWithoutAllocation<unsigned long long>(u"18446744073709551615", 18446744073709551615ull);
    ExpectReadWithoutAllocation<float>(u"0.1", 0.1f);
    ExpectReadWithoutAllocation<double>(u" 1.7976931348623157e308", 1.7976931348623157e308);
    ExpectReadWithoutAllocation<double>(u"1." + std::u16string(10000, u'0') + u"1", 1.0);
}

TEST(Allocation, DoesNotHappenWhenNumbersAreWritten)
{
    char16_t buffer[64];
    EXPECT_EQ(AllocationsOf([&] { Nuv::valuetostr(-1.7976931348623157e308, buffer, 64); }), 0);
    EXPECT_EQ(AllocationsOf([&] { Nuv::valuetostr(18446744073709551615ull, buffer, 64); }), 0);
}

} // namespace
