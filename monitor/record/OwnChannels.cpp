#include "monitor/record/OwnChannels.h"

#include "explain/text/JsonText.h"
#include "monitor/mcap/format/FileTime.h"

#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sys/timex.h>

namespace Monitor {

namespace {

using nlohmann::json;

constexpr double clocksEvery = 10; // seconds
constexpr double clockStep = 0.1;  // seconds by which a clock was set and did not only run

template <class Clock>
double now()
{
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

Mcap::Schema schema(const char* name, const char* properties)
{
    return {0, name, "jsonschema", std::string(R"({"type":"object","properties":{)") + properties + "}}"};
}
} // namespace

ClockState clockState()
{
    timex state{};
    const int answer = adjtimex(&state);
    return {answer >= 0 && answer != TIME_ERROR, static_cast<double>(state.maxerror) / 1e6};
}

OwnChannels::OwnChannels(Mcap::Recording& file)
    : _file(file),
      _frames(file.addChannel("@frames", "json",
                              schema("ostrel.Frame", R"("number":{"type":"integer"},"time":{"type":"number"})"))),
      _gaps(file.addChannel("@gaps", "json",
                            schema("ostrel.Gap",
                                   R"("label":{"type":"string"},"from":{"type":"number"},"to":{"type":"number"},)"
                                   R"("notKept":{"type":"integer"})"))),
      _clocks(
          file.addChannel("@clocks", "json",
                          schema("ostrel.Clocks", R"("wall":{"type":"number"},"steady":{"type":"number"},)"
                                                  R"("synchronized":{"type":"boolean"},"error":{"type":"number"})"))),
      _gapsSince(now<std::chrono::system_clock>())
{
}

void OwnChannels::writeFrames(const std::vector<RecordedFrame>& frames)
{
    for (const RecordedFrame& frame : frames)
        write(_frames, Mcap::fileTimeOf(frame._time), json{{"number", frame._number}, {"time", frame._time}}.dump());
}

void OwnChannels::writeGap(const std::string& label, std::uint64_t notKept)
{
    std::uint64_t& told = _told[label];
    if (notKept <= told)
        return;
    const double to = now<std::chrono::system_clock>();
    const std::uint64_t count = notKept - std::exchange(told, notKept);
    _notKept += count;
    write(_gaps, Mcap::fileTimeOf(to),
          Explain::jsonText(json{{"label", label}, {"from", _gapsSince}, {"to", to}, {"notKept", count}}));
}

void OwnChannels::endGaps()
{
    _gapsSince = now<std::chrono::system_clock>();
}

void OwnChannels::writeClocks()
{
    const double wall = now<std::chrono::system_clock>();
    const double steady = now<std::chrono::steady_clock>();
    const bool wasSet = std::abs(wall - steady - _wallAtZero) > clockStep;
    if (steady < _nextClocks && !wasSet)
        return;
    _nextClocks = steady + clocksEvery;
    _wallAtZero = wall - steady;
    const ClockState state = clockState();
    const json clocks{
        {"wall", wall}, {"steady", steady}, {"synchronized", state._isSynchronized}, {"error", state._error}};
    write(_clocks, Mcap::fileTimeOf(wall), clocks.dump());
}

void OwnChannels::write(std::uint16_t channel, std::uint64_t time, const std::string& json)
{
    _file.add(channel, time, time, Mcap::asBytes(json));
}
} // namespace Monitor
