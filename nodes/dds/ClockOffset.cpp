#include "nodes/dds/ClockOffset.h"

#include <algorithm>
#include <cmath>

namespace Trovio::Nodes {

namespace {

constexpr double drift = 2e-4; // seconds a second: two cheap clocks, or one that is just being set right

} // namespace

bool ClockOffset::note(double asked, double received, double answered, double arrived)
{
    const double underWay = (arrived - asked) - (answered - received);
    const double offset = ((received - asked) + (answered - arrived)) / 2.0;
    if (!std::isfinite(offset) || !(underWay >= 0.0) || answered < received)
        return false;
    _probes[_count % _probes.size()] = {offset, underWay / 2.0, arrived};
    ++_count;
    return true;
}

std::optional<ClockOffset::Estimate> ClockOffset::estimate(double now) const
{
    if (_count == 0)
        return std::nullopt;
    const auto boundOf = [now](const Probe& probe) { return probe._bound + drift * std::fabs(now - probe._time); };
    const auto end = _probes.begin() + static_cast<std::ptrdiff_t>(std::min(_count, _probes.size()));
    const auto best = std::min_element(
        _probes.begin(), end, [&](const Probe& left, const Probe& right) { return boundOf(left) < boundOf(right); });
    return Estimate{best->_offset, boundOf(*best)};
}

} // namespace Trovio::Nodes
