#include "trovio/Time.h"

#include <chrono>

namespace Trovio {

Time Time::getCurrentTime()
{
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Time(std::chrono::duration<double>(sinceEpoch).count());
}

} // namespace Trovio
