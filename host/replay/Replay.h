#pragma once

#include "host/replay/Players.h"
#include "host/replay/ReplayPace.h"
#include "monitor/replay/ReadAhead.h"

namespace Host {

/// Which part of a recording is replayed. Positions are seconds from its start.
struct ReplayRange {
    double _from = 0, _to = std::numeric_limits<double>::infinity();
    bool _loops = false;
    double _rate = 60; // frames a second where none were recorded
};

/// Pushes the records of a recording and runs its frames, in the order and at the times at which they were recorded.
/// What each slot had before the range comes at its start.
/// Ownership: refers to all that it was made from.
/// Threads:   the scene thread.
class Replay {
public:
    /// Runs a frame; `time` is its date. False ends the replay.
    using Frame = std::function<bool(std::uint64_t number, double time)>;

    Replay(Monitor::Mcap::InputFile& file, const Monitor::RecordedFile& recorded, const Players& players,
           Trovio::Stepper& stepper, ReplayPace& pace);

    /// Blocks until the end, or until the pace or a frame says stop; false then. `look` is called now and then also
    /// while nothing comes. Throws std::runtime_error where the file cannot be read any more.
    bool run(const ReplayRange& range, const Frame& frame, const std::function<void()>& look);

    /// Date of the first message.
    static Trovio::Time startOf(const Monitor::RecordedFile& recorded);
    /// Seconds from the first to the last.
    static double lengthOf(const Monitor::RecordedFile& recorded);

    std::uint64_t records() const { return _records; }
    std::uint64_t frames() const { return _frames; }
    /// Messages that were no values of their types, with the first one.
    std::uint64_t unreadable() const { return _unreadable; }
    const std::string& firstUnreadable() const { return _firstUnreadable; }

private:
    bool playOnce();
    bool play(const Monitor::RecordedMessage& message);
    bool pushAll(std::map<std::uint16_t, Monitor::RecordedMessage>& messages);
    bool moveTo(double position);
    bool runMadeFrames(double until);
    bool runFrame(std::uint64_t number, double time);
    void push(const Monitor::RecordedMessage& message);
    double positionOf(const Monitor::RecordedMessage& message) const;

    Monitor::Mcap::InputFile& _file;
    const Monitor::RecordedFile& _recorded;
    const Players& _players;
    Trovio::Stepper& _stepper;
    ReplayPace& _pace;
    const double _start; // date, in seconds
    const Monitor::RecordedChannel* const _framesChannel;

    ReplayRange _range;
    Frame _frame;
    std::function<void()> _look;
    double _shift = 0; // seconds by which times are later than recorded, after so many rounds
    double _nextFrame = 0;
    std::uint64_t _records = 0, _frames = 0, _unreadable = 0;
    std::string _firstUnreadable;
};
} // namespace Host
