#include "host/replay/ReplayRun.h"

#include "explain/text/Escape.h"
#include "host/ExitCode.h"
#include "host/replay/FieldLines.h"
#include "host/replay/Replay.h"
#include "host/replay/ReplayKeys.h"
#include "host/report/Report.h"
#include "host/run/RunMonitor.h"
#include "host/run/StoppableClock.h"
#include "host/show/Json.h"
#include "host/show/RunView.h"
#include "host/show/Terminal.h"
#include "osg/LogMessage.h"

#include <algorithm>
#include <sstream>
#include <unistd.h>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

using Descriptors = Trovio::Stepper::Descriptors;

constexpr double secondsToMilliseconds = 1000;

double rateOf(const std::vector<SceneFile>& files)
{
    double rate = 0;
    for (const SceneFile& file : files)
        rate = std::max(rate, file._host._rate._value);
    return rate;
}

Reach reachOf(const Options& options)
{
    return options._asTest ? Reach::Nowhere : options._send ? Reach::Sends : Reach::Hears;
}

/// What both kinds of replay have: the scenes on virtual time, with players.
class StagedReplay {
public:
    StagedReplay(const Options& options, const OpenRecording& recording, const WatchedRun& around, double speed,
                 Descriptors descriptors)
        : _recording(recording),
          _around(around),
          _clock(around._stop),
          _stepper(Replay::startOf(recording._recorded), descriptors),
          _players(recording._recorded, _stepper, reachOf(options)),
          _pace(_clock, speed),
          _range{options._fromPosition, options._toPosition, options._loops}
    {
    }

    /// False where a signal came first.
    bool build(std::vector<SceneFile> files)
    {
        _range._rate = rateOf(files);
        const bool isBuilt = _session.build(
            std::move(files), say(), [this] { return _around._stop.requested(); },
            [this](const std::string& path, const std::string& type, std::unique_ptr<Trovio::Node> made) {
                return _players.choose(path, type, std::move(made));
            });
        _players.finish();
        for (const std::string& note : _players.notes())
            _around._output.say(note);
        _stepper.advance(Replay::startOf(_recording._recorded)); // so that nodes have begun
        return isBuilt;
    }

    bool run(const Replay::Frame& frame, const std::function<void()>& look)
    {
        const bool isWhole = _replay.run(_range, frame, look);
        if (_replay.unreadable() > 0)
            _around._output.say(std::to_string(_replay.unreadable()) +
                                " messages were no values of their types: " + _replay.firstUnreadable());
        _around._output.say(summary());
        return isWhole;
    }

    Say say() const
    {
        return [&output = _around._output](const std::string& line) { output.say(line); };
    }
    /// For nodes that are called or stopped while time stands still.
    void serve() { _stepper.advance(_stepper.date()); }

    Session& session() { return _session; }
    Players& players() { return _players; }
    ReplayPace& pace() { return _pace; }
    const Replay& replay() const { return _replay; }
    double rate() const { return _range._rate; }
    std::string status() const { return _pace.text(Replay::lengthOf(_recording._recorded)); }

private:
    std::string summary() const
    {
        std::string text = "replayed " + std::to_string(_replay.records()) + " records in " +
                           std::to_string(_replay.frames()) + " frames";
        if (_pace.errors().count() == 0)
            return text;
        char late[60];
        std::snprintf(late, sizeof late, "; 99 %% of them came within %.3f ms of their time",
                      _pace.errors().quantile(0.99) * secondsToMilliseconds);
        return text + late;
    }

    const OpenRecording& _recording;
    const WatchedRun& _around;
    StoppableClock _clock;
    Trovio::Stepper _stepper;
    Players _players;
    ReplayPace _pace;
    ReplayRange _range;
    Session _session; // ends before the time that its nodes live by
    Replay _replay{*_recording._file, _recording._recorded, _players, _stepper, _pace};
};

void listen(Session& session, ChangeListener* listener, const SensorFilter& filter)
{
    for (SensorWatch* const watch : session.watches())
        if (filter.passes(watch->title(), watch->sensor().getLabel()))
            watch->setListener(listener);
}

std::size_t messageWidth()
{
    const auto size = terminalSize(STDERR_FILENO);
    return size ? size->_width : std::numeric_limits<std::size_t>::max();
}

/// Shows what is replayed: the values, and to who asks from outside everything.
class Shown {
public:
    Shown(StagedReplay& staged, const Options& options, const OpenRecording& recording, RunLog& log,
          const WatchedRun& around)
        : _staged(staged),
          _around(around),
          _drawsTable(drawsTable(options)),
          _keys(staged.pace()),
          _monitor(staged.session(), {options._listen, options._monitorMayWrite, staged.rate()}, staged.say()),
          _view(makeRunView(options, staged.session(), log, around._output,
                            Replay::startOf(recording._recorded).getSeconds(),
                            {true, [&staged] { return staged.status() + "  (space, →, ↑ ↓)"; }})),
          _now(Replay::startOf(recording._recorded).getSeconds())
    {
        listen(staged.session(), _view.get(), SensorFilter(options._filter));
    }
    ~Shown() { listen(_staged.session(), nullptr, SensorFilter()); }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

    bool frame(double now)
    {
        _now = now;
        _staged.session().frame(now);
        _view->frame(now);
        _monitor.endFrame(_staged.replay().frames(), 0, now);
        osg::logHeldBack();
        return _around._output.canWrite();
    }

    // Keys, and who asks, are served while it is paused, too.
    void look()
    {
        const double now = _clock.steady();
        if (now < _nextLook)
            return;
        _nextLook = now + lookInterval;
        const bool isPressed = _keys.read(*_view);
        _staged.serve();
        if (isPressed || (_staged.pace().isPaused() && _staged.status() != _told))
            tell();
        _monitor.endFrame(_staged.replay().frames(), 0, _now);
    }

    /// Where it is; below the table, or as a line.
    void tell()
    {
        _told = _staged.status();
        if (!_drawsTable)
            return _around._output.say(_told);
        _view->refresh();
        _view->frame(_now);
    }

private:
    static constexpr double lookInterval = 0.04; // seconds

    StagedReplay& _staged;
    const WatchedRun& _around;
    const bool _drawsTable;
    SystemClock _clock;
    ReplayKeys _keys;
    RunMonitor _monitor; // ends before the nodes do
    const std::unique_ptr<View> _view;
    double _now; // date of the last frame
    double _nextLook = 0;
    std::string _told; // status
};

std::unique_ptr<FieldLines> linesFor(const Options& options)
{
    if (!options._golden.empty())
        return FieldLines::compare(options._golden);
    return options._goldenToWrite.empty() ? FieldLines::print() : FieldLines::write(options._goldenToWrite);
}

bool refusesUnsteady(StagedReplay& staged)
{
    for (const std::string& node : staged.players().unsteady())
        staged.say()("node " + node +
                     " has threads of its own, so its values would come at other times in each test; record it, so "
                     "that the recording stands for it, or take it out of the scene");
    return !staged.players().unsteady().empty();
}
} // namespace

int replayShown(std::vector<SceneFile> files, const Options& options, const OpenRecording& recording,
                const WatchedRun& around)
{
    RunLog log(options._verbose, &around._output);
    StagedReplay staged(options, recording, around, options._speed.value_or(1), Descriptors::Watched);
    if (!staged.build(std::move(files)))
        return Done;
    reportStart(staged.session(), messageWidth(), staged.say());
    if (options._stepsFrames)
        staged.pace().goToNextFrame();
    else if (options._startsPaused)
        staged.pace().pause();
    {
        Shown shown(staged, options, recording, log, around);
        if (options._startsPaused || options._stepsFrames)
            shown.tell();
        staged.run([&shown](std::uint64_t, double now) { return shown.frame(now); }, [&shown] { shown.look(); });
    }
    around._watch.begin();
    const RunTotals totals{staged.session().stopNodes(), Trovio::Stepper::date().getSeconds(), staged.replay().frames(),
                           0};
    reportEnd(staged.session(), totals, messageWidth(), staged.say());
    if (options._format == Format::Json)
        around._output.putLast(countsLine(staged.session(), totals));
    return Done;
}

int replayAsTest(std::vector<SceneFile> files, const Options& options, const OpenRecording& recording,
                 const WatchedRun& around)
{
    const std::unique_ptr<FieldLines> lines = linesFor(options);
    RunLog log(options._verbose, &around._output);
    StagedReplay staged(options, recording, around, options._speed.value_or(std::numeric_limits<double>::infinity()),
                        Descriptors::Ignored);
    const bool isBuilt = staged.build(std::move(files));
    if (refusesUnsteady(staged))
        return BadUsage;
    std::ostringstream out;
    const std::unique_ptr<View> view = makeJsonView(out);
    listen(staged.session(), view.get(), SensorFilter(options._filter));
    const auto frame = [&](std::uint64_t number, double now) {
        staged.session().frame(now);
        const std::string changes = out.str();
        out.str({});
        return lines->put(number, changes);
    };
    const bool isWhole = isBuilt && staged.run(frame, [] {});
    listen(staged.session(), nullptr, SensorFilter());
    around._watch.begin();
    if (around._stop.requested()) {
        around._output.say("the test was ended by a signal");
        return Failed;
    }
    const std::string problem = lines->finish();
    if (!problem.empty())
        around._output.say(problem);
    return isWhole && problem.empty() ? Done : Failed;
}
} // namespace Host
