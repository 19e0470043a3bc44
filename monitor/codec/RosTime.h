#pragma once

#include "monitor/codec/CdrReader.h"
#include "trovio/Time.h"

namespace Monitor {

/// A point in time as ROS 2 writes it: whole nanoseconds, 1901 to 2038; what is outside becomes the nearest end, what
/// is no number 0.
void putRosTime(CdrWriter& out, const Trovio::Time& time);

/// std_msgs/Header
void putRosHeader(CdrWriter& out, const Trovio::Time& stamp, std::string_view frame);
void skipRosHeader(CdrReader& in);

} // namespace Monitor
