#include "monitor/replay/ReadAhead.h"

#include "base/QuietThread.h"
#include "explain/text/Failure.h"

#include <stdexcept>

namespace Monitor {

using Ostrel::LockGuard;

ReadAhead::ReadAhead(Mcap::InputFile& file, const RecordedFile& recorded, std::set<std::uint16_t> channels)
    : _messages(file, recorded._chunks, std::move(channels)),
      _thread(Ostrel::quietThread("read ahead", [this] { readAll(); }))
{
}

ReadAhead::~ReadAhead()
{
    {
        const LockGuard guard(_lock);
        _isOver = true;
        _changed.notify_all();
    }
    _thread.join();
}

void ReadAhead::readAll()
{
    std::string problem;
    try {
        while (const auto message = _messages.next())
            if (!put({message->_channel, message->_logTime, message->_publishTime,
                      Bytes(message->_data.begin(), message->_data.end())}))
                return;
    } catch (const std::bad_alloc&) {
        problem = "memory ran out while the recording was read";
    } catch (const std::exception& error) {
        problem = error.what();
    }
    const LockGuard guard(_lock);
    _problem.swap(problem);
    _isAtEnd = true;
    _changed.notify_all();
}

bool ReadAhead::put(RecordedMessage&& message)
{
    const LockGuard guard(_lock);
    const std::size_t cost = costOf(message);
    while (!_isOver && _bytes > 0 && _bytes + cost > MaxBytes)
        _changed.wait(_lock);
    if (_isOver)
        return false;
    _bytes += cost;
    _ready.push_back(std::move(message));
    _changed.notify_all();
    return true;
}

std::optional<RecordedMessage> ReadAhead::next()
{
    const LockGuard guard(_lock);
    while (_ready.empty() && !_isAtEnd)
        _changed.wait(_lock);
    if (_ready.empty() && !_problem.empty())
        throw std::runtime_error(_problem);
    if (_ready.empty())
        return std::nullopt;
    RecordedMessage message = std::move(_ready.front());
    _ready.pop_front();
    _bytes -= costOf(message);
    _changed.notify_all();
    return message;
}
} // namespace Monitor
