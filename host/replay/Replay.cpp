#include "host/replay/Replay.h"

#include "explain/text/Escape.h"
#include "monitor/mcap/format/FileTime.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Host {

using Monitor::RecordedFile;
using Monitor::RecordedMessage;
using Monitor::Mcap::secondsOf;

namespace {

constexpr std::size_t maxFrameBytes = 4096;

// As in the run that was recorded, where it says.
std::uint64_t frameNumber(const RecordedMessage& message, std::uint64_t otherwise)
{
    if (message._data.size() > maxFrameBytes)
        return otherwise;
    const auto frame = nlohmann::json::parse(Monitor::Mcap::asText(message._data), nullptr, false);
    const auto number = frame.is_object() ? frame.find("number") : frame.end();
    return number != frame.end() && number->is_number_unsigned() ? number->get<std::uint64_t>() : otherwise;
}
} // namespace

Trovio::Time Replay::startOf(const RecordedFile& recorded)
{
    return Trovio::Time(secondsOf(recorded._times._start));
}

double Replay::lengthOf(const RecordedFile& recorded)
{
    return secondsOf(recorded._times._end) - secondsOf(recorded._times._start);
}

Replay::Replay(Monitor::Mcap::InputFile& file, const RecordedFile& recorded, const Players& players,
               Trovio::Stepper& stepper, ReplayPace& pace)
    : _file(file),
      _recorded(recorded),
      _players(players),
      _stepper(stepper),
      _pace(pace),
      _start(startOf(recorded).getSeconds()),
      _framesChannel(recorded.find(Monitor::framesTopic))
{
}

double Replay::positionOf(const RecordedMessage& message) const
{
    return secondsOf(message._logTime) - _start;
}

bool Replay::run(const ReplayRange& range, const Frame& frame, const std::function<void()>& look)
{
    _range = range;
    _range._to = std::min(_range._to, lengthOf(_recorded));
    _frame = frame;
    _look = look;
    for (;;) {
        if (!playOnce())
            return false;
        if (!_range._loops)
            return true;
        // A frame later, so that time goes on where the recording has only one moment.
        _shift += _range._to - _range._from + 1 / _range._rate;
    }
}

bool Replay::playOnce()
{
    std::set<std::uint16_t> channels = _players.channels();
    if (_framesChannel)
        channels.insert(_framesChannel->_id);
    Monitor::ReadAhead messages(_file, _recorded, std::move(channels));
    std::map<std::uint16_t, RecordedMessage> before; // the newest of each channel
    _nextFrame = _range._from;
    _pace.startAt(_range._from);
    auto message = messages.next();
    for (; message && positionOf(*message) < _range._from; message = messages.next())
        before[message->_channel] = std::move(*message);
    if (_framesChannel)
        before.erase(_framesChannel->_id);
    if (!before.empty() && !pushAll(before))
        return false;
    for (; message && positionOf(*message) <= _range._to; message = messages.next())
        if (!play(*message))
            return false;
    return runMadeFrames(_range._to) && moveTo(_range._to);
}

bool Replay::pushAll(std::map<std::uint16_t, RecordedMessage>& messages)
{
    for (const auto& [channel, message] : messages) {
        if (!moveTo(_range._from))
            return false;
        push(message);
    }
    return true;
}

bool Replay::play(const RecordedMessage& message)
{
    const double position = positionOf(message);
    if (!runMadeFrames(position) || !moveTo(position))
        return false;
    if (_framesChannel && message._channel == _framesChannel->_id)
        return runFrame(frameNumber(message, _frames + 1), secondsOf(message._logTime) + _shift);
    push(message);
    _pace.noteArrival();
    return true;
}

// Before anything is pushed, all that went before is done.
bool Replay::moveTo(double position)
{
    if (!_pace.waitFor(position, _look))
        return false;
    _stepper.advance(Trovio::Time(_start + position + _shift));
    return true;
}

bool Replay::runMadeFrames(double until)
{
    if (_framesChannel)
        return true;
    const double first = _range._from;
    while (_nextFrame <= until) {
        if (!moveTo(_nextFrame) || !runFrame(_frames + 1, _start + _nextFrame + _shift))
            return false;
        _nextFrame = first + std::floor((_nextFrame - first) * _range._rate + 1.5) / _range._rate;
    }
    return true;
}

bool Replay::runFrame(std::uint64_t number, double time)
{
    ++_frames;
    const bool goesOn = _frame(number, time);
    _pace.endFrame();
    return goesOn;
}

void Replay::push(const RecordedMessage& message)
{
    Monitor::AnySource* const source = _players.find(message._channel);
    if (!source)
        return;
    const double stamp = secondsOf(message._publishTime);
    std::string problem;
    if (source->write(message._data, Trovio::Time(stamp > 0 ? stamp + _shift : stamp), problem)) {
        ++_records;
        return;
    }
    if (_unreadable++ == 0)
        _firstUnreadable = "slot " + Explain::inQuotes(source->slot().getName()) + ": " + problem;
}
} // namespace Host
