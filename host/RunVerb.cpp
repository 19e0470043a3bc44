#include "host/Verbs.h"

#include "host/Escape.h"
#include "host/ExitCode.h"
#include "host/Failure.h"
#include "host/Problems.h"
#include "host/Report.h"
#include "host/SceneReader.h"
#include "host/SystemClock.h"
#include "host/View.h"
#include "osg/Log.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
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

std::unique_ptr<View> makeView(const Options& options, const Session& session, double start)
{
    const bool onTerminal = isatty(STDOUT_FILENO);
    if (options._quiet)
        return std::make_unique<View>();
    if (options._format == Format::Json)
        return makeJsonView(std::cout);
    if (options._format == Format::Table || (options._format == Format::Automatic && onTerminal))
        return makeTableView(std::cout, onTerminal, session.watches());
    return makeLinesView(std::cout, start);
}

// Runs frames until the end of the run; false if nobody can read the values any more.
bool runFrames(Session& session, FrameLoop& loop, View& view)
{
    for (SensorWatch* watch : session.watches())
        watch->setListener(&view);
    loop.run([&](double now) {
        session.frame(now);
        view.frame(now);
        return std::cout.good();
    });
    for (SensorWatch* watch : session.watches())
        watch->setListener(nullptr);
    return std::cout.flush().good();
}

int runScenes(std::vector<SceneFile> files, const Options& options)
{
    const StopSignal stop;
    SystemClock clock(stop);
    FrameLoop loop(clock, rateOf(files, options), {options._seconds, options._frames});
    Session session;
    session.build(std::move(files), say);
    reportStart(session, say);
    const bool shown = runFrames(session, loop, *makeView(options, session, clock.now()));
    reportEnd(session, loop, say);
    if (!shown)
        say("standard output cannot be written to, so the run was ended");
    return shown ? Done : Failed;
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
    // Whole lines, also for whoever reads along through a pipe.
    std::setvbuf(stdout, nullptr, _IOLBF, 1u << 16);
    osg::doInitLog();
    osg::osgLogP->setInfoShown(options._verbose);
    auto files = readScenes(options);
    if (!files)
        return BadUsage;
    int code = Failed;
    if (const auto failure = failureOf([&] { code = runScenes(std::move(*files), options); }))
        say("the run failed: " + escaped(*failure));
    return code;
}
} // namespace Host
