#pragma once

#include <cstdint>
#include <optional>
#include <utility>

namespace osg {

/// Lets so many events through in each period, and counts the others: for what can be caused at will from outside. A
/// period begins with the first event after the last one is over. Times in seconds, of a clock that nobody sets.
/// Threads: one at a time.
class RateLimiter {
public:
    explicit RateLimiter(double period) : _period(period) {}

    /// Where the event may be reported: how many before it could not be, since the last one that could.
    std::optional<std::uint64_t> admit(double now, unsigned perPeriod = 1)
    {
        if (isOver(now)) {
            _start = now;
            _admitted = 0;
        }
        if (_admitted < perPeriod) {
            ++_admitted;
            return std::exchange(_held, 0);
        }
        hold();
        return std::nullopt;
    }

    /// Counts an event without a look at the time.
    void hold() { ++_held; }
    std::uint64_t held() const { return _held; }
    /// Once the period is over: how many could not be reported. They count as reported from then on.
    std::uint64_t takeHeld(double now) { return isOver(now) ? std::exchange(_held, 0) : 0; }

private:
    bool isOver(double now) const { return _admitted == 0 || now - _start >= _period; }

    const double _period;
    double _start = 0;
    unsigned _admitted = 0; // in this period
    std::uint64_t _held = 0;
};

} // namespace osg
