#include "nodes/dds/ValueTiming.h"

#include <cmath>
#include <cstdio>

namespace Trovio::Nodes {

namespace {

std::string inUnits(double seconds)
{
    const double size = std::fabs(seconds);
    char text[32];
    if (size < 1.0)
        std::snprintf(text, sizeof text, "%.*f ms", size < 0.01 ? 2 : 0, seconds * 1e3);
    else
        std::snprintf(text, sizeof text, "%.*f s", size < 100.0 ? 1 : 0, seconds);
    return text;
}

std::string whyUnknown(const PeerClocks::Knowledge& clock)
{
    if (clock._silence)
        return "it last answered " + inUnits(*clock._silence) + " ago";
    if (clock._unanswered == 0)
        return "it was not asked yet";
    return "it has not answered " + std::to_string(clock._unanswered) +
           (clock._unanswered == 1 ? " question" : " questions");
}

} // namespace

ValueTiming::ValueTiming(const Arrival& arrival, const ClockOffset::Estimate& clock, double now)
    : _delay(arrival._time + clock._offset - arrival._stamp),
      _age(now + clock._offset - arrival._stamp),
      _bound(clock._bound + ClockOffset::driftIn(now - arrival._time)) // the offset is today's
{
}

std::string describeTiming(const Arrival& arrival, const PeerClocks::Knowledge& clock, double now)
{
    if (!clock._estimate)
        return inUnits(now - arrival._stamp) +
               " old by our clock; its source's clock is not known: " + whyUnknown(clock);
    const ValueTiming timing(arrival, *clock._estimate, now);
    const double ahead = clock._estimate->_offset;
    return inUnits(timing._delay) + " from its source to here, " + inUnits(timing._age) + " old, wrong by " +
           inUnits(timing._bound) + " at most; its source's clock is " + inUnits(std::fabs(ahead)) +
           (ahead < 0.0 ? " behind" : " ahead");
}

} // namespace Trovio::Nodes
