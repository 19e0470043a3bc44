#pragma once

#include <atomic>
#include <cstdint>

namespace Ostrel {

/// A flag that changes under a lock of its owner and is asked without it, for the price of a plain read. Whoever knows,
/// by whatever other way, that a change is done sees it.
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
