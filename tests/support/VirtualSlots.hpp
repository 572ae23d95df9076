/// @file
/// Where virtual operations stand in the table of their class, as the Itanium C++ ABI represents pointers to
/// them: the first word is 1 plus the offset in bytes, or an even address when the member is not virtual.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace NuvTest
{

/// The index of an operation in the virtual table. A virtual destructor takes two slots. An overload is named
/// by its signature: `SlotOf<int(const char*, bool)>(&Channel::Write)`.
template <class Signature, class Class>
size_t SlotOf(Signature Class::*operation)
{
    const auto words = std::bit_cast<std::array<std::ptrdiff_t, 2>>(operation);
    if (words[0] % 2 == 0)
        throw std::logic_error("The operation is not virtual.");
    return static_cast<size_t>(words[0] - 1) / sizeof(void*);
}

/// `count` slots that follow one another.
inline std::vector<size_t> SlotsFrom(size_t first, size_t count)
{
    std::vector<size_t> slots(count);
    for (size_t i = 0; i < count; ++i)
        slots[i] = first + i;
    return slots;
}

} // namespace NuvTest
