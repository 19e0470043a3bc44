#pragma once

#include "monitor/mcap/read/Reader.h"
#include "monitor/mcap/write/GrowingFile.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

/// Messages whose number stands in them, in three channels by turns, and what a reader finds of them.
namespace Story {

using namespace Monitor;
using namespace Monitor::Mcap;

constexpr int channels = 3;
constexpr std::uint64_t firstTime = 1'700'000'000'000'000'000;

/// The payload of a message: its number, and bytes that follow from it.
inline Bytes payload(std::uint64_t number, std::size_t size)
{
    Bytes bytes(8 + size, static_cast<std::byte>(number * 31));
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

inline std::uint64_t timeOf(std::uint64_t number)
{
    return firstTime + number * 1'000'000;
}

/// A chunk with messages number `first` to `first + count - 1`, of up to `size` bytes.
inline ChunkBuilder chunk(std::uint64_t first, std::uint64_t count, std::size_t size)
{
    ChunkBuilder chunk;
    if (first == 0) {
        chunk.add(Schema{1, "std_msgs/msg/Int64", "ros2msg", "int64 data\n"});
        for (std::uint16_t id = 1; id <= channels; ++id)
            chunk.add(Channel{id, 1, "slot/" + std::to_string(id), "cdr", {}});
    }
    for (std::uint64_t number = first; number < first + count; ++number) {
        const Bytes bytes = payload(number, (number * 37) % (size + 1));
        chunk.add(Message{static_cast<std::uint16_t>(1 + number % channels),
                          static_cast<std::uint32_t>(number / channels), timeOf(number), timeOf(number) - 5, bytes});
    }
    return chunk;
}

/// Counts the messages that come in order and are as they were written.
class Found final : public Visitor {
public:
    void message(const Message& message) override
    {
        std::uint64_t number = 0;
        std::memcpy(&number, message._data.data(), std::min(sizeof number, message._data.size()));
        _good = _good && number == _messages && message._logTime == timeOf(number) &&
                message._channel == 1 + number % channels && message._sequence == number / channels &&
                message._data.size() >= 8 &&
                std::ranges::equal(message._data, payload(number, message._data.size() - 8));
        ++_messages;
    }
    void attachment(const Attachment& attachment, std::uint64_t, std::uint64_t) override
    {
        _attachments.emplace_back(asText(attachment._data));
    }
    void metadata(const Metadata& metadata, std::uint64_t, std::uint64_t) override { _metadata.push_back(metadata); }

    std::uint64_t _messages = 0;
    bool _good = true;
    std::vector<std::string> _attachments;
    std::vector<Metadata> _metadata;
    FileState _state;
};

inline Found read(InputFile& file)
{
    Found found;
    const FileState state = Reader(file, found).read();
    found._state = state;
    return found;
}

inline Found read(ByteView bytes)
{
    MemoryInput file(bytes);
    return read(file);
}

inline bool isDamaged(const Found& found)
{
    using Verdict = FileState::Verdict;
    return !found._good || (found._state._verdict != Verdict::Whole && found._state._verdict != Verdict::Cut);
}
} // namespace Story
