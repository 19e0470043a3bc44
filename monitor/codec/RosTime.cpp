#include "monitor/codec/RosTime.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Monitor {

void putRosTime(CdrWriter& out, const Trovio::Time& time)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const double seconds = time.getSeconds();
    const double inRange = std::isnan(seconds) ? 0.0 : std::clamp<double>(seconds, Limits::min(), Limits::max());
    const double whole = std::floor(inRange);
    constexpr double billion = 1e9;
    out.put(static_cast<std::int32_t>(whole));
    out.put(static_cast<std::uint32_t>(std::min((inRange - whole) * billion, billion - 1)));
}

void putRosHeader(CdrWriter& out, const Trovio::Time& stamp, std::string_view frame)
{
    putRosTime(out, stamp);
    out.putText(frame);
}

void skipRosHeader(CdrReader& in)
{
    in.get<std::int32_t>();
    in.get<std::uint32_t>();
    in.getText();
}

} // namespace Monitor
