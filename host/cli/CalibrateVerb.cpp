#include "host/cli/Verbs.h"

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "host/ExitCode.h"
#include "host/calibrate/Verdict.h"
#include "host/output/RunLog.h"
#include "host/run/StoppableClock.h"
#include "host/run/WatchedRun.h"
#include "host/show/Keyboard.h"
#include "ostrel/FieldTypes.h"
#include "scene/run/FrameLoop.h"
#include "scene/run/Session.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <unistd.h>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

/// The position that a field of one of the two types holds; nothing where a coordinate is no finite number.
std::optional<Point> positionIn(const Ostrel::Field& field)
{
    Point point;
    if (const auto* const single = dynamic_cast<const Ostrel::SFVec3f*>(&field))
        std::copy_n(single->value().data(), point.size(), point.begin());
    else
        std::copy_n(dynamic_cast<const Ostrel::SFVec3d&>(field).value().data(), point.size(), point.begin());
    const bool isFinite = std::ranges::all_of(point, [](double number) { return std::isfinite(number); });
    return isFinite ? std::optional(point) : std::nullopt;
}

/// Why the sensor with that label cannot be calibrated; empty if it can.
std::string whyNot(const SceneFile& file, const std::string& label)
{
    std::vector<std::string_view> labels;
    for (const SensorEntry& sensor : file._sensors) {
        if (sensor._label._value != label) {
            labels.push_back(sensor._label._value);
            continue;
        }
        const std::string& type = sensor._type._value;
        if (sensor._output._value)
            return "sensor " + inQuotes(sensor._name._value) + " gives values; allowed: one that takes a position";
        if (type != "SFVec3f" && type != "SFVec3d")
            return "sensor " + inQuotes(sensor._name._value) + " is of type " + type +
                   "; allowed: SFVec3f and SFVec3d, which hold a position";
        return {};
    }
    return "no sensor of the scene has the label " + inQuotes(label) + nearestHint(label, labels);
}

/// What the guide says of a run, until all points are measured, somebody gives up, or a signal comes.
Guide guided(Session& session, double rate, const Options& options, std::vector<KnownPoint> points,
             const WatchedRun& around)
{
    StoppableClock clock(around._stop);
    FrameLoop loop(clock, rate, {options._seconds, options._frames});
    const auto watches = session.watches();
    SensorWatch& watch =
        **std::ranges::find(watches, options._label, [](const SensorWatch* one) { return one->sensor().getLabel(); });
    Guide guide(std::move(points), options._still,
                "ostrel-host why " + options._names.front() + " FROM " + options._label,
                [&around](const std::string& line) { around._output.say(escaped(line, 1000)); });
    Keyboard keyboard;
    KeyPresses presses;
    std::uint64_t changes = watch.changes();
    loop.run([&](double now) {
        session.frame(now);
        for (const KeyPress& press : presses.read(keyboard.read()))
            guide.press(press, clock.steady());
        const bool isNew = watch.changes() != changes;
        changes = watch.changes();
        guide.frame(clock.steady(), isNew ? positionIn(watch.field()) : std::nullopt);
        return !guide.isOver();
    });
    return guide;
}

int report(const CalibrationVerdict& verdict, RunOutput& output)
{
    if (!verdict._table.empty())
        output.say(verdict._table.substr(0, verdict._table.size() - 1));
    if (!verdict._note.empty())
        output.say("note: " + verdict._note);
    if (!verdict._refusal.empty()) {
        output.say("refused: " + verdict._refusal);
        return NothingFound;
    }
    output.say("behind what stands on the route:");
    output.putLast(verdict._align + "\n");
    return Done;
}

int calibrate(std::vector<SceneFile> files, const std::vector<KnownPoint>& points, const Options& options,
              const WatchedRun& around)
{
    RunOutput& output = around._output;
    RunLog log(false, &output);
    const double rate = files.front()._host._rate._value;
    Session session;
    if (!session.build(
            std::move(files), [&output](const std::string& line) { output.say(line); },
            [&around] { return around._stop.requested(); }))
        return NoAnswer;
    const Guide guide = guided(session, rate, options, points, around);
    around._watch.begin();
    if (guide.isOver() && !guide.gaveUp())
        return report(judgeCalibration(guide.measured(), options._limit, options._keepScale), output);
    output.say("given up; nothing was found");
    return NoAnswer;
}

int refused(const std::string& why)
{
    std::fprintf(stderr, "%s\n", why.c_str());
    return BadUsage;
}
} // namespace

int calibrateVerb(const Options& options)
{
    std::vector<KnownPoint> points;
    try {
        points = readPoints(options._points);
    } catch (const std::runtime_error& error) {
        return refused(error.what());
    }
    auto files = readScenes(options);
    if (!files)
        return BadUsage;
    if (const std::string why = whyNot(files->front(), options._label); !why.empty())
        return refused(why);
    if (!isatty(STDIN_FILENO))
        return refused("calibrate is led by keys, and standard input is no terminal; run it on one");
    return runWatched(std::move(*files), droppedAsText, [&](std::vector<SceneFile> scenes, const WatchedRun& around) {
        return calibrate(std::move(scenes), points, options, around);
    });
}
} // namespace Host
