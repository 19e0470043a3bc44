#include "tests/support/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::uint64_t> calls{0};
thread_local std::uint64_t callsToFailure = 0; // 0: none fails
thread_local std::uint64_t failuresLeft = 0;

bool fails()
{
    if (callsToFailure > 1) {
        --callsToFailure;
        return false;
    }
    if (callsToFailure == 0 || failuresLeft == 0)
        return false;
    --failuresLeft;
    return true;
}

void* counted(std::size_t size)
{
    calls.fetch_add(1, std::memory_order_relaxed);
    if (fails())
        throw std::bad_alloc();
    if (void* const memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

} // namespace

std::uint64_t AllocationCount::total()
{
    return calls.load(std::memory_order_relaxed);
}

AllocationFailure::AllocationFailure(std::uint64_t nth, std::uint64_t failures) : _failures(failures)
{
    callsToFailure = nth;
    failuresLeft = failures;
}

AllocationFailure::~AllocationFailure()
{
    callsToFailure = 0;
}

bool AllocationFailure::happened() const
{
    return failuresLeft != _failures;
}

void* operator new(std::size_t size)
{
    return counted(size);
}

void* operator new[](std::size_t size)
{
    return counted(size);
}

// Not the sanitizer's, whose memory free() would not take.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return counted(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}
