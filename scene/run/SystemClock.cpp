#include "scene/run/SystemClock.h"

#include <chrono>
#include <thread>

namespace Scenes {

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
    if (const double left = time - steady(); left > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(left));
    return true;
}
} // namespace Scenes
