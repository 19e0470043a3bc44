#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>

namespace Host {

/// Seconds of a clock that nobody sets.
inline double steadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// For poll(), whose callers look at the clock and come again: nothing is too long, and a little time is not none.
inline int millisecondsOf(double seconds)
{
    return static_cast<int>(std::ceil(std::clamp(seconds * 1000, 0.0, 1e6)));
}
} // namespace Host
