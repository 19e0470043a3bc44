#include "monitor/record/RecorderWork.h"

#include "base/QuietThread.h"
#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "monitor/mcap/format/FileTime.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace Monitor {

namespace {

constexpr auto roundTime = std::chrono::milliseconds(16);
constexpr double flushEvery = 0.8; // seconds; with what the disk takes, whatever cuts the file costs at most one
constexpr double warnBelow = 60;   // seconds of room on the disk
constexpr double knownAfter = 2;   // seconds until what was written says how fast the disk fills

double steadyNow()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Trovio::Pattern patternOf(const std::string& text)
{
    try {
        return Trovio::Pattern(text);
    } catch (const Trovio::Exception& error) {
        throw std::runtime_error("slots " + Explain::inQuotes(text) + " cannot be recorded: " + error.getMessage());
    }
}

void addNotes(Mcap::Recording& file, const RecorderOptions& options, const RecorderOptions::Pairs& texts)
{
    file.note({"host", {options.facts.begin(), options.facts.end()}});
    const ClockState clock = clockState();
    file.note(
        {"clock", {{"synchronized", clock._isSynchronized ? "yes" : "no"}, {"error", std::to_string(clock._error)}}});
    const double now = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    for (const auto& [name, text] : texts)
        file.attach(name, "application/toml", text, Mcap::fileTimeOf(now));
}
} // namespace

RecorderWork::RecorderWork(const RecorderOptions& options, const RecorderOptions::Pairs& texts,
                           const RecordingOrder& order, Handover& handover)
    : _options(options),
      _path(order.path),
      _pattern(patternOf(order.slots)),
      _handover(handover),
      _started(steadyNow()),
      _file(order.path, Mcap::OutputFile::create(order.path), options.program),
      _own(_file),
      _slots(_pattern, order.memory, _file) // here, so that nothing is missed of what is pushed from now on
{
    addNotes(_file, options, texts);
    _handover.tell(statusNow());
    try {
        _thread = Ostrel::quietThread("recorder", [this] { run(); });
    } catch (...) {
        _handover.tell({});
        throw;
    }
}

void RecorderWork::run()
{
    try {
        const auto failure = Explain::failureOf([this] {
            while (waitForNextRound())
                round(false);
            round(true);
        });
        if (failure)
            end(*failure);
    } catch (const std::bad_alloc&) {
        end("memory ran out");
    }
}

// A round that takes long is followed by the next one at once: large records fill their slots meanwhile.
bool RecorderWork::waitForNextRound()
{
    _nextRound = std::max(_nextRound + roundTime, std::chrono::steady_clock::now());
    const Ostrel::LockGuard guard(_lock);
    if (!_ending)
        _changed.wait_until(_lock, _nextRound);
    return !_ending;
}

void RecorderWork::round(bool isLast)
{
    if (_hasEnded)
        return;
    if (isLast)
        _file.waitForRoom();
    if (_file.hasRoom()) {
        _slots.drain();
        _own.writeFrames(_handover.takeFrames());
    }
    if (const double now = steadyNow(); isLast || now >= _nextFlush) {
        _nextFlush = now + flushEvery;
        flush();
    }
    tell();
}

void RecorderWork::flush()
{
    _own.writeClocks();
    _slots.look();
    writeGaps();
    _file.flush();
}

void RecorderWork::writeGaps()
{
    _slots.forEachLoss([this](const std::string& label, std::uint64_t records) { _own.writeGap(label, records); });
    _own.writeGap("@frames", _handover.framesNotKept());
    _own.endGaps();
}

RecorderStatus RecorderWork::statusNow() const
{
    const Mcap::RecordingStatus file = _file.status();
    RecorderStatus status;
    status._isRecording = true;
    status._path = _path;
    status._slots = _slots.slots();
    status._leftOut = _slots.leftOut();
    status._records = _slots.records();
    status._notKept = _own.notKept();
    status._size = file._size;
    status._problem = _problem.empty() ? file._problem : _problem;
    const double seconds = steadyNow() - _started;
    if (seconds > knownAfter && file._size > 0)
        status._secondsLeft = static_cast<double>(file._room) * seconds / static_cast<double>(file._size);
    return status;
}

void RecorderWork::tell()
{
    const RecorderStatus status = statusNow();
    _handover.tell(status);
    sayOfRoom(status);
    if (status._problem.empty() || std::exchange(_hasEnded, true))
        return;
    say(status._problem);
    _slots.letGo(); // the values go on to everybody else
}

void RecorderWork::sayOfRoom(const RecorderStatus& status)
{
    const bool isShort = status._problem.empty() && status._secondsLeft >= 0 && status._secondsLeft < warnBelow;
    if (isShort && !std::exchange(_saidRoom, true))
        say("recording " + Explain::inQuotes(_path) +
            ": the disk is full in less than a minute; make room, or end the recording");
    _saidRoom = _saidRoom && isShort;
}

void RecorderWork::end(const std::string& problem)
{
    _problem = "recording " + Explain::inQuotes(_path) + " ended: " + problem;
    tell();
}

void RecorderWork::say(const std::string& line) const
{
    if (_options.say)
        _options.say(line);
}

void RecorderWork::finish()
{
    if (!_thread.joinable())
        return;
    {
        const Ostrel::LockGuard guard(_lock);
        _ending = true;
        _changed.notify_all();
    }
    _thread.join();
    const std::string problem = _file.finish();
    RecorderStatus status = statusNow();
    if (!problem.empty() && !_hasEnded)
        say(problem);
    status._isRecording = false;
    _handover.tell(status);
}
} // namespace Monitor
