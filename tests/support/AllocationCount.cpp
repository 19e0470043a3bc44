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

void* counted(std::size_t size, std::size_t alignment)
{
    calls.fetch_add(1, std::memory_order_relaxed);
    if (fails())
        throw std::bad_alloc();
    void* memory = nullptr;
    if (posix_memalign(&memory, alignment < sizeof(void*) ? sizeof(void*) : alignment, size ? size : 1) != 0)
        throw std::bad_alloc();
    return memory;
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
    return counted(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}

void* operator new[](std::size_t size)
{
    return counted(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return counted(size, static_cast<std::size_t>(alignment));
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

void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    std::free(memory);
}
