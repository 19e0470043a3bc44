#pragma once

#include "monitor/mcap/read/InputFile.h"
#include "monitor/replay/RecordedFile.h"

#include <memory>
#include <set>

namespace Monitor {

/// Hands out messages by the time of their arrival, those of one time in the order of the file. Chunks are read when
/// their time has come, so that a file may be larger than memory.
/// Ownership: refers to the file.
/// Threads:   one; waits for the disk.
class TimedMessages {
public:
    /// Only of these channels.
    TimedMessages(Mcap::InputFile& file, std::vector<RecordedChunk> chunks, std::set<std::uint16_t> channels);
    ~TimedMessages();
    TimedMessages(const TimedMessages&) = delete;
    TimedMessages& operator=(const TimedMessages&) = delete;

    /// Nothing at the end. Its bytes stay until the next call. Throws std::runtime_error where a chunk cannot be read
    /// any more, or where more chunks of one time would have to be held than there should be memory for.
    std::optional<Mcap::Message> next();

private:
    struct OpenChunk;
    OpenChunk* first() const;
    void open(const RecordedChunk& chunk);

    Mcap::InputFile& _file;
    const std::vector<RecordedChunk> _chunks;
    const std::set<std::uint16_t> _channels;
    std::size_t _opened = 0; // of _chunks
    std::vector<std::unique_ptr<OpenChunk>> _open;
    std::uint64_t _held = 0; // bytes
};
} // namespace Monitor
