#include "trovio/StampWatch.h"

#include <cmath>

namespace Trovio {

std::atomic<double> StampWatch::_horizon{0.0};

void StampWatch::noteOdd(const Time& stamp)
{
    const double seconds = stamp.getSeconds();
    // A stamp that runs backwards may mean that the clock was set back, and the horizon with it: look anew.
    const double horizon = Time::getCurrentTime().getSeconds() + Tolerance;
    _horizon.store(horizon, std::memory_order_relaxed);
    if (!(seconds >= _counts._last.getSeconds()))
        ++_counts._backwards;
    if (seconds > horizon)
        ++_counts._future;
    // Nothing could be compared with what is no number.
    if (!std::isnan(seconds))
        _counts._last = stamp;
}

} // namespace Trovio
