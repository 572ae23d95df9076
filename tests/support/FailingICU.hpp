#pragma once

#include <unicode/uclean.h>

#include <algorithm>
#include <cstring>
#include <malloc.h>
#include <new>
#include <stdexcept>

namespace NuvTest
{

/// Has ICU, which does not use `new`, take its memory from there until the end of the scope, so that its
/// allocations can be made to fail too. At both ends ICU is as in a fresh process: it has to load its tables
/// and aliases again. Nothing else in the process may hold an object of ICU at either end.
class FailingICU
{
  public:
    FailingICU()
    {
        u_cleanup();
        UErrorCode status = U_ZERO_ERROR;
        u_setMemoryFunctions(nullptr, Allocate, Reallocate, Free, &status);
        if (U_FAILURE(status))
            throw std::runtime_error("ICU keeps its own memory functions.");
    }
    FailingICU(const FailingICU&) = delete;
    FailingICU& operator=(const FailingICU&) = delete;
    ~FailingICU() { u_cleanup(); } // which gives ICU its own functions back

  private:
    static void* U_CALLCONV Allocate(const void*, size_t size) { return ::operator new(size, std::nothrow); }

    static void* U_CALLCONV Reallocate(const void*, void* block, size_t size)
    {
        void* const larger = ::operator new(size, std::nothrow);
        if (!larger || !block)
            return larger;
        std::memcpy(larger, block, std::min(size, malloc_usable_size(block)));
        ::operator delete(block);
        return larger;
    }

    static void U_CALLCONV Free(const void*, void* block) { ::operator delete(block); }
};

} // namespace NuvTest
