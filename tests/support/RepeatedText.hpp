/// @file
/// A text of gigabytes in a few megabytes of memory.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

namespace NuvTest
{

/// A pattern over and over, zero-terminated: one block of it is mapped many times, one behind the other.
template <class Unit>
class RepeatedText
{
  public:
    /// @param pattern has a power of two of units
    /// @param minLength is rounded up to whole blocks
    RepeatedText(std::basic_string_view<Unit> pattern, size_t minLength)
        : length((minLength + BlockLength - 1) / BlockLength * BlockLength)
        , start(Map(PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, nullptr, ReservedSize()))
    {
        const int block = memfd_create("block", 0);
        if (block < 0 || ftruncate(block, BlockSize) != 0)
            throw std::runtime_error("No memory could be shared.");
        Map(PROT_READ | PROT_WRITE, MAP_SHARED, start, BlockSize, block);
        for (size_t i = 0; i < BlockLength; ++i)
            start[i] = pattern[i % pattern.size()];
        for (size_t unit = 0; unit < length; unit += BlockLength)
            Map(PROT_READ, MAP_SHARED, start + unit, BlockSize, block);
        close(block);
    }
    RepeatedText(const RepeatedText&) = delete;
    RepeatedText& operator=(const RepeatedText&) = delete;
    ~RepeatedText() { munmap(start, ReservedSize()); }

    const Unit* Start() const { return start; }
    size_t Length() const { return length; }

  private:
    static constexpr size_t BlockSize = 0x1000000;
    static constexpr size_t BlockLength = BlockSize / sizeof(Unit);

    /// The terminator is in a block of its own.
    size_t ReservedSize() const { return length * sizeof(Unit) + BlockSize; }

    static Unit* Map(int protection, int flags, Unit* at, size_t size, int file = -1)
    {
        void* const mapped = mmap(at, size, protection, flags | (at ? MAP_FIXED : 0), file, 0);
        if (mapped == MAP_FAILED)
            throw std::runtime_error("No memory could be mapped.");
        return static_cast<Unit*>(mapped);
    }

    size_t length;
    Unit* start;
};

} // namespace NuvTest
