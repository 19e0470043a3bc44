#include "benchmarks/harness/Allocations.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {

std::atomic<std::uint64_t> calls{0};

// No atomic addition: it would cost the contenders that allocate more than it costs to allocate.
void count()
{
    calls.store(calls.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

} // namespace

std::uint64_t Bench::allocations()
{
    return calls.load(std::memory_order_relaxed);
}

// The C library lets a program put its own allocation in front, and keeps these names for it to fall back on.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size)
{
    count();
    return __libc_malloc(size);
}

void* calloc(std::size_t number, std::size_t size)
{
    count();
    return __libc_calloc(number, size);
}

void* realloc(void* memory, std::size_t size)
{
    count();
    return __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    count();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size)
{
    count();
    *memory = __libc_memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}
}
