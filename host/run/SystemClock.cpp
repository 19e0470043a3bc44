#include "host/run/SystemClock.h"

#include <chrono>

namespace Host {

using namespace Scenes;

double SystemClock::now()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

double SystemClock::steady()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

bool SystemClock::waitUntil(double time)
{
    for (double left = time - steady(); left > 0 && !_stop.requested(); left = time - steady())
        _stop.wait(left);
    return !_stop.requested();
}
} // namespace Host
