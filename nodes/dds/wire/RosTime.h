#pragma once

#include "RosMessages.h" // generated
#include <cmath>
#include <limits>
#include <string>

namespace Trovio::Nodes {

using RosTime = builtin_interfaces_msg_dds__Time_;

/// Why seconds since 1970 do not fit; empty if they do.
inline std::string writeTime(double seconds, RosTime& time)
{
    const double whole = std::floor(seconds);
    if (!(std::fabs(whole) < std::numeric_limits<std::int32_t>::max()))
        return "a time " + std::to_string(seconds) + " seconds from 1970, which 32 bits cannot say";
    time = {static_cast<std::int32_t>(whole),
            std::min(999'999'999U, static_cast<std::uint32_t>(std::lround((seconds - whole) * 1e9)))};
    return {};
}

/// No number if the nanoseconds make more than a second.
inline double readTime(const RosTime& time)
{
    constexpr std::uint32_t inASecond = 1'000'000'000U;
    return time.nanosec < inASecond ? time.sec + time.nanosec * 1e-9 : std::numeric_limits<double>::quiet_NaN();
}

} // namespace Trovio::Nodes
