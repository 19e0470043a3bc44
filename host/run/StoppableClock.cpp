#include "host/run/StoppableClock.h"

namespace Host {

bool StoppableClock::waitUntil(double time)
{
    for (double left = time - steady(); left > 0 && !_stop.requested(); left = time - steady())
        _stop.wait(left);
    return !_stop.requested();
}
} // namespace Host
