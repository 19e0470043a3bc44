#pragma once

#include "trovio/Time.h"
#include <string>

namespace Trovio {

/// "2026-11-22T02:08:54.250Z"; as seconds where it is no date of four digits.
std::string dateOf(const Time& time);

/// "0.25 s"
std::string inSeconds(double seconds);

} // namespace Trovio
