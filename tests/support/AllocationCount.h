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

/// Lets the n-th call of operator new on this thread fail, counted from 1, and as many after it as are asked for, as
/// long as it lives. One at a time.
class AllocationFailure {
public:
    static constexpr std::uint64_t All = UINT64_MAX;

    explicit AllocationFailure(std::uint64_t nth, std::uint64_t failures = 1);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    bool happened() const;

private:
    const std::uint64_t _failures;
};
