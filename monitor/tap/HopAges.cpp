#include "monitor/tap/HopAges.h"

#include "trovio/Root.h"

#include <algorithm>
#include <cmath>

namespace Monitor {
namespace {

using Trovio::SlotInfo;

constexpr std::size_t maxRecords = 200'000; // of a hop: what comes later is not measured
constexpr double stampStep = 5e-7;          // seconds: how finely a double tells today

double now()
{
    return Trovio::Time::getCurrentTime().getSeconds();
}

const SlotInfo* slotOf(const std::vector<SlotInfo>& slots, Trovio::Slot::Direction direction)
{
    const auto found = std::ranges::find(slots, direction, &SlotInfo::_direction);
    return found == slots.end() ? nullptr : &*found;
}

double lastTaken(const std::string& label)
{
    const std::vector<SlotInfo> slots = Trovio::Root::get().findSlots(label);
    const SlotInfo* const in = slotOf(slots, Trovio::Slot::Direction::In);
    return in ? in->_in->_lastTaken.getSeconds() : 0;
}

} // namespace

HopAges::HopAges(const std::vector<std::string>& way) : _taps({}, "@delay")
{
    for (const std::string& label : way)
        if (&label == &way.back() || _taps.add(label))
            _hops.push_back({label, {}});
    _lastPoll = now();
    _lastTaken = lastTaken(way.back());
    // What a slot held before counts for nothing: it may have come long ago.
    _taps.drain([](const std::string&, const SlotCodec&, TapRecord&&) {});
}

void HopAges::poll()
{
    _taps.drain([this](const std::string& label, const SlotCodec&, TapRecord&& record) {
        note(*std::ranges::find(_hops, label, &Hop::_label),
             {record._stamp.getSeconds(), static_cast<double>(record._arrival) / 1e9}, _taps.arrivalBound());
    });
    pollLast();
}

// It was taken between the beginning of the look before and the end of this one.
void HopAges::pollLast()
{
    const double begin = now();
    const double stamp = lastTaken(_hops.back()._label);
    const double end = now();
    if (stamp != std::exchange(_lastTaken, stamp))
        note(_hops.back(), {stamp, end}, end - _lastPoll);
    _lastPoll = begin;
}

void HopAges::note(Hop& hop, const Passed& passed, double bound)
{
    if (!std::isfinite(passed._stamp) || hop._passed.size() == maxRecords)
        return;
    hop._passed.push_back(passed);
    hop._bound = std::max(hop._bound, bound);
}

std::vector<HopAge> HopAges::ages(const SourceClock& clock) const
{
    std::vector<double> stamps;
    for (const Passed& passed : _hops.front()._passed)
        stamps.push_back(passed._stamp);
    std::ranges::sort(stamps);
    std::vector<HopAge> ages;
    for (const Hop& hop : _hops)
        ages.push_back(ageOf(hop, stamps, clock));
    return ages;
}

HopAge HopAges::ageOf(const Hop& hop, const std::vector<double>& stamps, const SourceClock& clock) const
{
    std::vector<double> ages;
    for (const Passed& passed : hop._passed)
        if (std::ranges::binary_search(stamps, passed._stamp))
            ages.push_back(passed._time + clock._ahead - passed._stamp);
    if (ages.empty())
        return {hop._label};
    std::ranges::sort(ages);
    const auto rank = [&ages](std::size_t percent) { return ages[(ages.size() * percent + 99) / 100 - 1]; };
    return {
        hop._label, ages.size(), rank(50), rank(99), ages.front(), ages.back(), stampStep + hop._bound + clock._bound};
}

} // namespace Monitor
