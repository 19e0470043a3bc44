#include "nodes/dds/clocks/ValueTiming.h"

#include <cmath>
#include <cstdio>
#include <iterator>

namespace Trovio::Nodes {

namespace {

struct Unit {
    double _below; // seconds that are shown in it
    double _factor;
    int _digits; // after the decimal point
    const char* _name;
};
constexpr Unit units[] = {{0.01, 1e3, 2, "ms"}, {1.0, 1e3, 0, "ms"}, {100.0, 1.0, 1, "s"}, {0.0, 1.0, 0, "s"}};

double up(double number)
{
    return std::ceil(number - 1e-6); // a rounding error is not rounded up
}

std::string inUnits(double seconds, double (*round)(double) = std::round)
{
    const Unit* unit = units;
    while (std::fabs(seconds) >= unit->_below && unit + 1 != std::end(units))
        ++unit;
    const double steps = std::pow(10.0, unit->_digits);
    // Adding 0 turns -0 into 0.
    const double number = round(seconds * unit->_factor * steps) / steps + 0.0;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", unit->_digits, number, unit->_name);
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

ValueTiming::ValueTiming(const SampleArrival& arrival, const ClockOffset::Estimate& clock, double now)
    : _delay(arrival._time + clock._offset - arrival._stamp),
      _age(now + clock._offset - arrival._stamp),
      _bound(clock._bound + ClockOffset::driftIn(now - arrival._time)) // the offset is today's
{
}

std::string describeTiming(const SampleArrival& arrival, const PeerClocks::Knowledge& clock, double now)
{
    if (!clock._estimate)
        return inUnits(now - arrival._stamp) +
               " old by our clock; its source's clock is not known: " + whyUnknown(clock);
    const ValueTiming timing(arrival, *clock._estimate, now);
    const double ahead = clock._estimate->_offset;
    return inUnits(timing._delay) + " from its source to here, " + inUnits(timing._age) + " old, wrong by " +
           inUnits(timing._bound, up) + " at most; its source's clock is " + inUnits(std::fabs(ahead)) +
           (ahead < 0.0 ? " behind" : " ahead");
}

} // namespace Trovio::Nodes
