#pragma once

#include <atomic>
#include <cstdint>

namespace Ostrel {

/// A flag that changes under a lock of its owner and is asked without it, for the price of a plain read. A change is
/// seen by all that it happens before, such as what comes after a join or under the next lock. On x86 it is seen as
/// soon as the lock is left, however one hears of that: leaving it is an xchg, which waits until all stores before it
/// are seen.
class Flag {
public:
    Flag() = default;
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

    bool isSet() const { return _set.load(std::memory_order_relaxed) != 0; }
    void set(bool value) { _set.store(value ? 1 : 0, std::memory_order_relaxed); }

private:
    std::atomic<std::uint8_t> _set{0}; // not bool: the reference compiler inlines this one's operations always
};

} // namespace Ostrel
