#include "nodes/dds/clocks/ClockOffset.h"

#include <algorithm>
#include <cmath>

namespace Trovio::Nodes {

namespace {

constexpr double drift = 2e-4; // seconds a second: two cheap clocks, or one that is just being set right

} // namespace

double ClockOffset::driftIn(double seconds)
{
    return drift * std::fabs(seconds);
}

bool ClockOffset::note(double asked, double received, double answered, double arrived)
{
    const double underWay = (arrived - asked) - (answered - received);
    const double offset = ((received - asked) + (answered - arrived)) / 2.0;
    // Negated, so that NaN is refused, too.
    if (!(received >= 0.0 && answered >= received && answered < endOfDates && underWay >= 0.0))
        return false;
    const double bound = underWay / 2.0;
    if (const auto known = estimate(arrived); known && std::fabs(known->_offset - offset) > known->_bound + bound)
        _count = 0;
    _probes[_count % _probes.size()] = {offset, bound, arrived};
    ++_count;
    return true;
}

std::optional<ClockOffset::Estimate> ClockOffset::estimate(double now) const
{
    if (const auto silence = age(now); !silence || *silence > Lifetime)
        return std::nullopt;
    const auto boundOf = [now](const Probe& probe) { return probe._bound + driftIn(now - probe._time); };
    const auto end = _probes.begin() + static_cast<std::ptrdiff_t>(std::min(_count, _probes.size()));
    const auto best = std::min_element(
        _probes.begin(), end, [&](const Probe& left, const Probe& right) { return boundOf(left) < boundOf(right); });
    return Estimate{best->_offset, boundOf(*best)};
}

std::optional<double> ClockOffset::age(double now) const
{
    return _count == 0 ? std::nullopt : std::optional(std::fabs(now - _probes[(_count - 1) % _probes.size()]._time));
}

} // namespace Trovio::Nodes
