#pragma once

#include "monitor/mcap/format/Format.h"

#include <optional>

namespace Monitor::Mcap {

/// What stands in the content of a chunk before its records, and the records as they are stored.
struct ChunkHead {
    std::uint64_t _start, _end; // times
    std::uint64_t _size;        // of the records, not compressed
    std::uint32_t _checksum;    // of these; 0: not computed
    std::string_view _compression;
    ByteView _stored;
};

struct MessageIndex {
    std::uint16_t _channel = 0;
    std::vector<IndexEntry> _entries;
};

/// A chunk as the summary names it.
struct ChunkIndex {
    TimeSpan _times;
    std::uint64_t _offset = 0, _length = 0; // of its record, in the file
    std::map<std::uint16_t, std::uint64_t> _indexOffsets;
    std::uint64_t _indexLength = 0; // of all its message indexes
    std::string _compression;
    std::uint64_t _stored = 0, _size = 0; // bytes of its records, stored and not compressed
};

// The fields of one record; nothing where the content is too short for them. Views refer into the content.
std::optional<Schema> parseSchema(ByteView content);
std::optional<Channel> parseChannel(ByteView content);
std::optional<Message> parseMessage(ByteView content);
std::optional<ChunkHead> parseChunk(ByteView content);
std::optional<MessageIndex> parseMessageIndex(ByteView content);
std::optional<ChunkIndex> parseChunkIndex(ByteView content);
/// Nothing also where its checksum is wrong.
std::optional<Attachment> parseAttachment(ByteView content);
std::optional<Metadata> parseMetadata(ByteView content);
/// Nothing also where its checksum is wrong: another application may have given the opcode another meaning.
std::optional<Checkpoint> parseCheckpoint(ByteView content);

/// A record among others in memory.
struct RecordView {
    Op _op;
    ByteView _content;
};
/// Takes the next record off; nothing where no whole one is left.
std::optional<RecordView> takeRecord(ByteView& records);

/// What a chunk's records are, as they were before they were stored: `head._stored` itself, or `buffer`, which they are
/// decompressed into. Nothing, with the reason, where they do not fit what the head says.
std::optional<ByteView> chunkRecords(const ChunkHead& head, Bytes& buffer, std::string& problem);

} // namespace Monitor::Mcap
