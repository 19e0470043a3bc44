#pragma once

#include "base/Mutex.h"
#include "monitor/replay/TimedMessages.h"

#include <condition_variable>
#include <deque>
#include <optional>
#include <thread>

namespace Monitor {

/// A message with bytes of its own.
struct RecordedMessage {
    std::uint16_t _channel = 0;
    std::uint64_t _logTime = 0, _publishTime = 0; // nanoseconds since 1970; 0 where there was no such stamp
    Bytes _data;
};

/// Reads messages before they are needed, on a thread of its own, so that who replays them does not wait for the disk.
/// Ownership: refers to the file, which nobody else reads meanwhile.
/// Threads:   one that takes.
class ReadAhead {
public:
    static constexpr std::size_t MaxBytes = 16UL * 1024 * 1024; // bytes that are ready; one message may be larger

    /// As TimedMessages. Throws std::system_error where there can be no more threads.
    ReadAhead(Mcap::InputFile& file, const RecordedFile& recorded, std::set<std::uint16_t> channels);
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// Nothing at the end; waits where none is ready. Throws what TimedMessages throws.
    std::optional<RecordedMessage> next() OSTREL_EXCLUDES(_lock);

private:
    void readAll() OSTREL_EXCLUDES(_lock);
    bool put(RecordedMessage&& message) OSTREL_EXCLUDES(_lock);
    static std::size_t costOf(const RecordedMessage& message) { return message._data.size() + sizeof message; }

    TimedMessages _messages; // the thread's
    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::condition_variable_any _changed;
    std::deque<RecordedMessage> _ready OSTREL_GUARDED_BY(_lock);
    std::size_t _bytes OSTREL_GUARDED_BY(_lock) = 0; // of _ready
    std::string _problem OSTREL_GUARDED_BY(_lock);
    bool _isAtEnd OSTREL_GUARDED_BY(_lock) = false, _isOver OSTREL_GUARDED_BY(_lock) = false;
    std::thread _thread; // last: it uses all of the above
};
} // namespace Monitor
