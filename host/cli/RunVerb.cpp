#include "host/cli/Verbs.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "explain/text/NameHint.h"
#include "host/ExitCode.h"
#include "host/output/RunLog.h"
#include "host/report/Report.h"
#include "host/run/ClockStepDetector.h"
#include "host/run/ReloadThread.h"
#include "host/run/RunChanges.h"
#include "host/run/RunMonitor.h"
#include "host/run/RunRecorder.h"
#include "host/run/StoppableClock.h"
#include "host/run/WatchedRun.h"
#include "host/show/Json.h"
#include "host/show/RunView.h"
#include "host/show/Terminal.h"
#include "osg/LogMessage.h"
#include "scene/file/SceneMemory.h"
#include "scene/file/SceneReader.h"
#include "scene/run/FrameLoop.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

constexpr const char* endedEarly = "ended before the scene was built";

void say(const std::string& line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
}

// Columns that a message may take; as many as it likes where no terminal shows it.
std::size_t messageWidth()
{
    const auto size = terminalSize(STDERR_FILENO);
    return size ? size->_width : std::numeric_limits<std::size_t>::max();
}

// Each context gets the rate that its scene asks for, or more.
double rateOf(const SceneFiles& files, const Options& options)
{
    double rate = 0;
    for (const auto& file : files)
        rate = std::max(rate, file->_host._rate._value);
    return options._rate.value_or(rate);
}

// What the command line says, else the first scene that says anything.
MonitorSettings monitorOf(const SceneFiles& files, const Options& options)
{
    std::string listen = options._listen;
    for (const auto& file : files)
        if (listen.empty())
            listen = file->_host._monitor._value;
    if (listen.empty() && options._monitorMayWrite)
        listen = "localhost";
    return {listen, options._monitorMayWrite, rateOf(files, options)};
}

void tellOfStep(double step, const Session& session, View& view)
{
    for (SensorWatch* watch : session.watches())
        watch->clockStepped(step);
    view.clockStepped(step);
}

void listen(const Session& session, View* view, const SensorFilter& filter)
{
    for (SensorWatch* watch : session.watches())
        if (filter.passes(watch->title(), watch->sensor().getLabel()))
            watch->setListener(view);
}

/// What runs besides the scenes, and has to follow when they change.
struct Followers {
    View& _view;
    RunMonitor& _monitor;
    RunRecorder& _recorder;
    FrameJobs& _jobs;
};

// Between two frames: does what others want changed.
void followChanges(const Session& session, FrameLoop& loop, const Options& options, const Followers& followers)
{
    const std::uint64_t sensorChanges = session.sensorChanges();
    if (!followers._jobs.work())
        return;
    const double rate = rateOf(session.files()._running, options);
    loop.setRate(rate);
    followers._monitor.setRate(rate);
    if (session.sensorChanges() == sensorChanges)
        return;
    listen(session, &followers._view, SensorFilter(options._filter));
    followers._view.sensorsChanged(session);
    followers._monitor.follow();
}

// Runs frames until the end of the run, which also comes when nobody can read the values any more.
void runFrames(Session& session, FrameLoop& loop, FrameClock& clock, const Options& options, const RunOutput& output,
               const Followers& followers)
{
    ClockStepDetector steps;
    listen(session, &followers._view, SensorFilter(options._filter));
    loop.run([&](double now) {
        if (const double step = steps.update(now, clock.steady()); step != 0)
            tellOfStep(step, session, followers._view);
        followChanges(session, loop, options, followers);
        session.frame(now);
        followers._view.frame(now);
        followers._monitor.endFrame(loop.frames(), loop.skipped(), now);
        followers._recorder.endFrame(loop.frames(), now);
        osg::logHeldBack();
        return output.canWrite();
    });
    listen(session, nullptr, SensorFilter());
}

// For a reload that nobody waits for: what is wrong is said.
void reloadAndSay(SceneChanger& changer, const Say& say)
{
    const auto failure = failureOf([&] {
        if (changer.reload().empty())
            say("the scenes were read anew; nothing differs from what runs");
    });
    if (failure)
        say(*failure + "\nnothing was changed; the run goes on as before");
}

std::unique_ptr<ReloadThread> makeReloadThread(const Session& session, const Options& options, SceneChanger& changer,
                                               const StopSignal& stop, const Say& say)
{
    ReloadThread::Reasons reasons{{}, stop.keepsHangUp()};
    if (options._followsFiles)
        for (const auto& file : session.files()._running)
            reasons._files.push_back(file->_path);
    if (reasons._files.empty() && !reasons._hangUp)
        return nullptr;
    return std::make_unique<ReloadThread>(stop, reasons, [&changer, say] { reloadAndSay(changer, say); });
}

/// No job waits for a frame from here on; ends before those do that wait.
struct JobsEnd {
    FrameJobs& _jobs;
    explicit JobsEnd(FrameJobs& jobs) : _jobs(jobs) {}
    JobsEnd(const JobsEnd&) = delete;
    JobsEnd& operator=(const JobsEnd&) = delete;
    ~JobsEnd() { _jobs.end(); }
};

// Else a mistake in the pattern would look like a scene in which nothing happens.
bool anyPasses(const std::vector<SceneFile>& files, const SensorFilter& filter)
{
    std::vector<std::string_view> names;
    for (const SceneFile& file : files)
        for (const SensorEntry& sensor : file._sensors) {
            const std::string scene = files.size() > 1 ? file._path + ": " : "";
            if (filter.passes(scene + sensor._name._value, sensor._label._value))
                return true;
            names.push_back(sensor._name._value);
        }
    if (filter.text().empty())
        return true;
    say("no sensor has " + inQuotes(filter.text()) + " in its name or label" + nearestHint(filter.text(), names));
    return false;
}

int runScenes(std::vector<SceneFile> files, const Options& options, const WatchedRun& around)
{
    if (!hasControllingTerminal())
        around._stop.keepHangUp(); // for the thread that has the scenes read anew
    RunOutput& output = around._output;
    const Say sayInRun = [&output](const std::string& line) { output.say(line); };
    RunLog log(options._verbose, &output);
    StoppableClock clock(around._stop);
    Session session;
    if (!session.build(std::move(files), sayInRun, [&around] { return around._stop.requested(); })) {
        output.say(endedEarly);
        return Done;
    }
    reportStart(session, messageWidth(), sayInRun);
    const MonitorSettings settings = monitorOf(session.files()._running, options);
    FrameLoop loop(clock, settings._rate, {options._seconds, options._frames});
    FrameJobs jobs;
    SceneChanger changer(session, jobs, sayInRun);
    RunRecorder recorder(options, !drawsTable(options), session, sayInRun);
    {
        RunMonitor monitor(session, settings, sayInRun, &recorder.recorder(),
                           changesOf(session, jobs, changer)); // before the nodes
        const JobsEnd endForMonitor(jobs);                     // also where there is no thread for what follows
        const auto reloads = makeReloadThread(session, options, changer, around._stop, sayInRun);
        const JobsEnd end(jobs);
        const auto view = makeRunView(options, session, log, output, clock.now());
        runFrames(session, loop, clock, options, output, {*view, monitor, recorder, jobs});
    }
    around._watch.begin();
    const RunTotals totals{session.stopNodes(), clock.now(), loop.frames(), loop.skipped()};
    reportEnd(session, totals, messageWidth(), sayInRun);
    if (options._format == Format::Json)
        output.putLast(countsLine(session, totals));
    return recorder.finish() ? Done : Failed; // no node pushes any more, so all that was pushed is in the file
}
} // namespace

std::optional<std::vector<SceneFile>> readScenes(const Options& options)
{
    try {
        return Scenes::readScenes(options._names);
    } catch (const SceneError& error) {
        say(error.what());
        return std::nullopt;
    }
}

int runVerb(const Options& options)
{
    auto files = readScenes(options);
    if (!files)
        return BadUsage;
    if (!anyPasses(*files, SensorFilter(options._filter)))
        return NothingFound;
    if (const std::string refusal = RunRecorder::refusal(options); !refusal.empty())
        return say(refusal), BadUsage;
    const int verdict = options._strict ? withMemoryFor(*files, [&] { return partsVerdict(*files); }) : Done;
    if (verdict != Done) {
        say(verdict == NoAnswer ? endedEarly : "nothing was run, as --strict asks");
        return verdict == NoAnswer ? Done : verdict;
    }
    return runWatched(std::move(*files), options._format == Format::Json ? droppedAsJson : droppedAsText,
                      [&options](std::vector<SceneFile> scenes, const WatchedRun& around) {
                          return runScenes(std::move(scenes), options, around);
                      });
}
} // namespace Host
