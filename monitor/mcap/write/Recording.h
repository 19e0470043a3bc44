#pragma once

#include "base/Mutex.h"
#include "monitor/mcap/write/GrowingFile.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <thread>

namespace Monitor::Mcap {

struct RecordingLimits {
    std::size_t _chunk = 4UL * 1024 * 1024;    // bytes from which on a chunk is handed to the disk
    std::size_t _waiting = 32UL * 1024 * 1024; // bytes that may wait for the disk
    std::size_t _spare = 96UL * 1024 * 1024;   // bytes of memory that is kept for the next chunks
};

struct RecordingStatus {
    std::uint64_t _messages = 0; // that are on the disk
    std::uint64_t _size = 0;     // bytes of the file
    std::uint64_t _room = 0;     // bytes that still fit on the disk
    std::size_t _waiting = 0;    // bytes that wait for the disk
    std::string _problem;        // why nothing more is recorded; empty where all is well
};

/// A file that messages are recorded to: fills chunks, and has a thread of its own write them.
/// Ownership: owns file and thread; the destructor writes what waits, and ends the file.
/// Threads:   status() and hasRoom() from any; the rest from one thread, which never waits for the disk but in
///            waitForRoom() and finish().
class Recording {
public:
    /// `title` names the file in problems. Throws std::system_error where there can be no more threads.
    Recording(std::string title, std::unique_ptr<OutputFile> file, std::string library,
              const RecordingLimits& limits = {});
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// A number for the messages of a topic. `schema` needs no number; one that comes again is written once. Throws
    /// std::length_error beyond maxChannels.
    std::uint16_t addChannel(const std::string& topic, const std::string& encoding, const Schema& schema);

    /// False, and nothing is added, where the message is larger than what a file may hold. Times are nanoseconds since
    /// 1970. Where the file has failed, the message is lost.
    bool add(std::uint16_t channel, std::uint64_t logTime, std::uint64_t publishTime, ByteView data);

    void attach(const std::string& name, const std::string& mediaType, std::string_view data, std::uint64_t time);
    void note(Metadata metadata);

    /// Hands what was added to the disk, however little it is.
    void flush();

    bool hasRoom() const OSTREL_EXCLUDES(_lock);
    void waitForRoom() OSTREL_EXCLUDES(_lock);
    RecordingStatus status() const OSTREL_EXCLUDES(_lock);

    /// Waits until all is written and the file is ended. Returns the problem; empty where there was none.
    std::string finish();

private:
    struct Job {
        std::function<std::error_code(GrowingFile&)> _do;
        std::size_t _bytes;
    };
    std::uint16_t numberOf(const Schema& schema);
    void hand(Job&& job) OSTREL_EXCLUDES(_lock);
    ChunkBuilder takeSpare() OSTREL_EXCLUDES(_lock);
    void keepSpare(ChunkBuilder&& chunk) OSTREL_EXCLUDES(_lock);
    /// False where it came to nothing: while something is to be confirmed it does not wait long.
    bool waitForJob(bool isAllConfirmed) OSTREL_EXCLUDES(_lock);
    std::optional<Job> nextJob() OSTREL_EXCLUDES(_lock);
    void writeAll(const std::string& library);
    void letGo(std::size_t bytes) OSTREL_EXCLUDES(_lock);
    /// False where there was no memory for it.
    bool attempt(const std::function<std::error_code(GrowingFile&)>& action) OSTREL_EXCLUDES(_lock);
    void told(std::error_code error) OSTREL_EXCLUDES(_lock);

    const std::string _title;
    std::string _outOfMemory; // what to say then, when there is no memory to make it
    const RecordingLimits _limits;
    GrowingFile _file; // the thread's
    ChunkBuilder _chunk;
    struct Sequence {
        Channel _channel;
        std::uint32_t _next = 0; // of its messages
    };
    std::vector<Schema> _schemas;     // number n stands at n - 1
    std::vector<Sequence> _channels;  // likewise
    std::size_t _schemasWritten = 0;  // of _schemas; the rest comes into the next chunk that has messages
    std::size_t _channelsWritten = 0; // likewise

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::condition_variable_any _changed;
    std::deque<Job> _jobs OSTREL_GUARDED_BY(_lock);
    std::vector<ChunkBuilder> _spares OSTREL_GUARDED_BY(_lock); // empty, with their memory
    std::size_t _spareBytes OSTREL_GUARDED_BY(_lock) = 0;       // of it
    RecordingStatus _status OSTREL_GUARDED_BY(_lock);
    bool _ending OSTREL_GUARDED_BY(_lock) = false;
    std::thread _thread; // last: it uses all of the above
};
} // namespace Monitor::Mcap
