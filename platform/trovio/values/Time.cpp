#include "trovio/Time.h"

#include "trovio/Stepper.h"

#include <chrono>

namespace Trovio {

Time Time::getCurrentTime()
{
    if (Stepper::isActive())
        return Stepper::date();
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Time(std::chrono::duration<double>(sinceEpoch).count());
}

} // namespace Trovio
