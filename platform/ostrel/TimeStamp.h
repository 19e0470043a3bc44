#pragma once

#include <chrono>

namespace Ostrel {

/// Wall-clock seconds; 0 stands for "outside of any frame".
using TimeStamp = double;

/// The time now, in seconds since 1970.
inline TimeStamp currentTime()
{
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace Ostrel
