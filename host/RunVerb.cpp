#include "host/Verbs.h"

#include "host/Escape.h"
#include "host/ExitCode.h"
#include "host/Failure.h"
#include "host/FrameLoop.h"
#include "host/Problems.h"
#include "host/Report.h"
#include "host/RunCounts.h"
#include "host/RunLog.h"
#include "host/RunOutput.h"
#include "host/SceneReader.h"
#include "host/SystemClock.h"
#include "host/View.h"
#include "host/WallSteps.h"
#include "osg/LogMessage.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace Host {
namespace {

void say(const std::string& line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
}

// Each context gets the rate that its scene asks for, or more.
double rateOf(const std::vector<SceneFile>& files, const Options& options)
{
    double rate = 0;
    for (const SceneFile& file : files)
        rate = std::max(rate, file._host._rate._value);
    return options._rate.value_or(rate);
}

std::unique_ptr<View> makeView(const Options& options, const Session& session, RunLog& log, RunOutput& output,
                               double start)
{
    const bool onTerminal = isatty(STDOUT_FILENO);
    if (options._quiet)
        return std::make_unique<View>();
    if (options._format == Format::Json)
        return makeJsonView(output.values());
    if (options._format == Format::Table || (options._format == Format::Automatic && onTerminal))
        return makeTableView(output.values(), onTerminal, onTerminal && isatty(STDERR_FILENO) ? &log : nullptr,
                             session.watches(), [&output] { return output.isTaken(); });
    return makeLinesView(output.values(), start);
}

void tellOfStep(double step, const Session& session, View& view)
{
    for (SensorWatch* watch : session.watches())
        watch->clockStepped(step);
    view.clockStepped(step);
}

// Runs frames until the end of the run, which also comes when nobody can read the values any more.
void runFrames(Session& session, FrameLoop& loop, FrameClock& clock, View& view, const RunOutput& output)
{
    WallSteps steps;
    for (SensorWatch* watch : session.watches())
        watch->setListener(&view);
    loop.run([&](double now) {
        if (const double step = steps.look(now, clock.steady()); step != 0)
            tellOfStep(step, session, view);
        session.frame(now);
        view.frame(now);
        osg::logHeldBack();
        return output.canWrite();
    });
    for (SensorWatch* watch : session.watches())
        watch->setListener(nullptr);
}

int runScenes(std::vector<SceneFile> files, const Options& options, const StopSignal& stop, RunOutput& output)
{
    const Say sayInRun = [&output](const std::string& line) { output.say(line); };
    RunLog log(options._verbose, &output);
    SystemClock clock(stop);
    FrameLoop loop(clock, rateOf(files, options), {options._seconds, options._frames});
    Session session;
    session.build(std::move(files), sayInRun);
    reportStart(session, sayInRun);
    runFrames(session, loop, clock, *makeView(options, session, log, output, clock.now()), output);
    const RunTotals totals{session.stopNodes(), clock.now(), loop.frames(), loop.skipped()};
    reportEnd(session, totals, sayInRun);
    if (options._format == Format::Json)
        output.putLast(countsLine(session, totals));
    return Done;
}
} // namespace

std::optional<std::vector<SceneFile>> readScenes(const Options& options)
{
    std::vector<SceneFile> files;
    bool good = true;
    for (const std::string& path : options._names) {
        try {
            files.push_back(readScene(path));
        } catch (const SceneError& error) {
            say(error.what());
            good = false;
        }
    }
    return good ? std::optional(std::move(files)) : std::nullopt;
}

int runVerb(const Options& options)
{
    auto files = readScenes(options);
    if (!files)
        return BadUsage;
    int code = Failed;
    const auto failure = failureOf([&] {
        RunOutput output(options._format == Format::Json);
        const StopSignal stop;
        if (const auto inRun = failureOf([&] { code = runScenes(std::move(*files), options, stop, output); }))
            output.say("the run failed: " + escaped(*inRun));
        code = output.finish(code);
    });
    if (failure)
        say("the run cannot start: " + escaped(*failure));
    return code;
}
} // namespace Host
