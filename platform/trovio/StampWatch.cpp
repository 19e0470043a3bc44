#include "trovio/StampWatch.h"

namespace Trovio {

std::atomic<double> StampWatch::_horizon{0.0};

void StampWatch::compareWithClock(const Time& stamp)
{
    const double horizon = Time::getCurrentTime().getSeconds() + Tolerance;
    _horizon.store(horizon, std::memory_order_relaxed);
    if (stamp.getSeconds() > horizon)
        ++_counts._future;
}

} // namespace Trovio
