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
        const double seconds = stamp.getSeconds();
        // So written that a stamp that is no number is odd, too.
        const bool isOrdinary =
            seconds >= _counts._last.getSeconds() && seconds <= _horizon.load(std::memory_order_relaxed);
        if (isOrdinary)
            _counts._last = stamp;
        else
            noteOdd(stamp);
    }

    const StampCounts& getCounts() const { return _counts; }

private:
    void noteOdd(const Time& stamp);

    static std::atomic<double> _horizon;
    StampCounts _counts;
};

} // namespace Trovio
