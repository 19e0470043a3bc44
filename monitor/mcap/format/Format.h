#pragma once

#include "monitor/codec/Bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What an MCAP file is made of: a magic, records of an opcode, a length and a content, and the magic again. Numbers are
// little-endian, times are nanoseconds since 1970.
namespace Monitor::Mcap {

using ByteView = std::span<const std::byte>;

enum class Op : std::uint8_t {
    Header = 0x01,
    Footer = 0x02,
    Schema = 0x03,
    Channel = 0x04,
    Message = 0x05,
    Chunk = 0x06,
    MessageIndex = 0x07,
    ChunkIndex = 0x08,
    Attachment = 0x09,
    AttachmentIndex = 0x0A,
    Statistics = 0x0B,
    Metadata = 0x0C,
    MetadataIndex = 0x0D,
    SummaryOffset = 0x0E,
    DataEnd = 0x0F,
    Checkpoint = 0x80 // our own, as applications may have them: what was on the disk when it was written
};

inline constexpr std::string_view magic{"\x89MCAP0\r\n", 8};
inline constexpr std::size_t frameSize = 9;                   // of a record: its opcode and length
inline constexpr std::size_t dataEndSize = frameSize + 4;     // with its checksum
inline constexpr std::size_t footerSize = frameSize + 20;     // with two offsets and a checksum
inline constexpr std::size_t checkpointSize = frameSize + 20; // likewise
inline constexpr std::uint64_t maxRecord = 1'073'741'824; // bytes in a record that is written or read; more is refused
inline constexpr std::size_t maxChannels = 65'535;        // as many as the numbers of channels allow

using Texts = std::map<std::string, std::string>;

/// How the bytes of messages are laid out. Number 0 means none.
struct Schema {
    std::uint16_t _id = 0;
    std::string _name;     // "geometry_msgs/msg/Point"
    std::string _encoding; // "ros2msg", "jsonschema", or empty
    std::string _text;
    bool operator==(const Schema&) const = default;
};

struct Channel {
    std::uint16_t _id = 0;
    std::uint16_t _schema = 0;
    std::string _topic;
    std::string _encoding; // of its messages: "cdr", "json"
    Texts _metadata;
    bool operator==(const Channel&) const = default;
};

/// Its bytes belong to whoever hands it out.
struct Message {
    std::uint16_t _channel = 0;
    std::uint32_t _sequence = 0;
    std::uint64_t _logTime = 0;     // when it arrived
    std::uint64_t _publishTime = 0; // when it was true
    ByteView _data;
};

struct Attachment {
    std::uint64_t _logTime = 0;
    std::uint64_t _createTime = 0; // 0: unknown
    std::string _name;
    std::string _mediaType;
    ByteView _data;
};

struct Metadata {
    std::string _name;
    Texts _values;
};

/// Ends each addition to a file that is written while the disk is still busy with the addition before.
struct Checkpoint {
    std::uint64_t _offset = 0;    // its own: one that was recorded as data is none
    std::uint64_t _confirmed = 0; // bytes of the file that were on the disk before the addition was begun
};

/// Where the messages of one channel stand in the records of a chunk, in their order there.
struct IndexEntry {
    std::uint64_t _logTime;
    std::uint64_t _offset;
    auto operator<=>(const IndexEntry&) const = default;
};
using ChunkMessages = std::map<std::uint16_t, std::vector<IndexEntry>>;

/// The smallest and the largest time of messages.
struct TimeSpan {
    std::uint64_t _start = 0;
    std::uint64_t _end = 0;
    bool _empty = true;

    void add(std::uint64_t time)
    {
        _start = _empty || time < _start ? time : _start;
        _end = _empty || time > _end ? time : _end;
        _empty = false;
    }
    void add(const TimeSpan& other)
    {
        if (other._empty)
            return;
        add(other._start);
        add(other._end);
    }
};

inline std::string_view asText(ByteView bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

inline ByteView asBytes(std::string_view text)
{
    return {reinterpret_cast<const std::byte*>(text.data()), text.size()};
}
} // namespace Monitor::Mcap
