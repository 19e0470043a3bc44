#pragma once

#include "trovio/SlotCounts.h"
#include <atomic>

namespace Trovio {

/// Looks at the time stamps of the records that pass through a slot.
/// Reading the clock for each record would cost more than storing it. So the process shares a horizon, the last time
/// that was read plus the tolerance: a stamp before it cannot lie in the future, and only one behind it needs the
/// clock. Threads: the slot's data lock.
class StampWatch {
public:
    /// Clocks of two machines may differ by this much, in seconds, before a stamp counts as lying in the future.
    static constexpr double Tolerance = 0.05;

    void note(const Time& stamp)
    {
        const bool isBackwards = stamp.getSeconds() < _counts._last.getSeconds();
        _counts._backwards += isBackwards;
        // A stamp that runs backwards may mean that the clock was set back, and the horizon with it.
        if (isBackwards || stamp.getSeconds() > _horizon.load(std::memory_order_relaxed))
            compareWithClock(stamp);
        _counts._last = stamp;
    }

    const StampCounts& getCounts() const { return _counts; }

private:
    void compareWithClock(const Time& stamp);

    static std::atomic<double> _horizon;
    StampCounts _counts;
};

} // namespace Trovio
