#include "tests/support/FailingAllocator.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

using NuvTest::FailingAllocator::Mode;

std::atomic<long> blocks{0};
std::atomic<bool> armed{false};
std::atomic<bool> failed{false};
std::atomic<long> countdown{0};
std::atomic<Mode> currentMode{Mode::Once};

bool MustFail()
{
    if (!armed)
        return false;
    const long left = --countdown;
    if (left > 0 || (left < 0 && currentMode == Mode::Once))
        return false;
    failed = true;
    return true;
}

void* Allocate(std::size_t size)
{
    if (!MustFail())
    {
        if (void* block = std::malloc(size ? size : 1))
        {
            ++blocks;
            return block;
        }
    }
    const std::new_handler handler = std::get_new_handler();
    if (handler)
        handler(); // throws
    throw std::bad_alloc();
}

void* AllocateOrNull(std::size_t size)
try
{
    return Allocate(size);
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

void Free(void* block)
{
    if (!block)
        return;
    --blocks;
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) { return Allocate(size); }

void* operator new[](std::size_t size) { return Allocate(size); }

void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return AllocateOrNull(size); }

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return AllocateOrNull(size); }

void operator delete(void* block) noexcept { Free(block); }

void operator delete[](void* block) noexcept { Free(block); }

void operator delete(void* block, std::size_t) noexcept { Free(block); }

void operator delete[](void* block, std::size_t) noexcept { Free(block); }

namespace NuvTest::FailingAllocator
{

void FailAt(long nth, Mode mode)
{
    currentMode = mode;
    countdown = nth;
    failed = false;
    armed = true;
}

bool Disarm()
{
    armed = false;
    return failed;
}

long GetNumberOfBlocks() { return blocks; }

Pause::Pause()
    : wasArmed(armed.exchange(false))
{
}

Pause::~Pause() { armed = wasArmed; }

} // namespace NuvTest::FailingAllocator
