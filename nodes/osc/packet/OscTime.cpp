#include "nodes/osc/packet/OscTime.h"

#include <algorithm>
#include <cmath>

namespace Trovio::Nodes {

namespace {

constexpr double secondsTo1970 = 2208988800.0; // from 1900
constexpr double eraSeconds = 0x1p32;          // the seconds of a tag wrap in 2036
constexpr double fractions = 0x1p32;           // a second
constexpr double earliest = 0x1p31 - secondsTo1970;

} // namespace

Time fromTimeTag(OscTimeTag tag, const Time& arrival)
{
    if (tag <= OscImmediately)
        return arrival;
    const auto seconds = static_cast<double>(tag >> 32U);
    const double era = seconds < 0x1p31 ? eraSeconds : 0.0;
    return Time(seconds + era - secondsTo1970 + static_cast<double>(tag & 0xffffffffU) / fractions);
}

OscTimeTag toTimeTag(const Time& time)
{
    const double seconds = time.getSeconds();
    if (!(seconds >= earliest && seconds < earliest + eraSeconds))
        return OscImmediately;
    // Whole seconds and fraction apart: together they need more bits than a double has.
    const double whole = std::floor(seconds);
    const auto fraction = static_cast<OscTimeTag>(std::llround((seconds - whole) * fractions));
    const OscTimeTag tag = (static_cast<OscTimeTag>(whole + secondsTo1970) << 32U) + fraction;
    return std::max(tag, OscImmediately + 1); // the era changes at 0, which would mean another thing
}

} // namespace Trovio::Nodes
