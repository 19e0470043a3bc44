#pragma once

#include "monitor/codec/CdrReader.h"
#include "trovio/Image.h"
#include "trovio/Time.h"

namespace Monitor {

/// An image as sensor_msgs/Image: rows without gaps, the format's name in ROS 2 as its encoding.
struct ImageWire {
    static constexpr std::size_t leastBytes = 32;
    static void put(CdrWriter& out, const Trovio::Image& image, const Trovio::Time& stamp);
    /// Takes rows with gaps, too. Only the encodings that put() writes.
    static void get(CdrReader& in, Trovio::Image& image);
};

} // namespace Monitor
