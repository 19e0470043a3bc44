#pragma once

#include <cstdint>

/// Counts the calls of operator new in the whole process, on every thread, since it was made.
class AllocationCount {
public:
    AllocationCount() : _start(total()) {}
    std::uint64_t since() const { return total() - _start; }

private:
    static std::uint64_t total();
    const std::uint64_t _start;
};
