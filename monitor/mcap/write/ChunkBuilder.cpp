#include "monitor/mcap/write/ChunkBuilder.h"

#include <stdexcept>
#include <zstd.h>

namespace Monitor::Mcap {

namespace {

// Frame, two times, size, checksum, name of the compression, length of the records. An open chunk has this room in
// front, so that its records need not be moved to be written.
constexpr std::size_t headRoom = frameSize + 8 + 8 + 8 + 4 + 4 + 8;

// The end of a file that is not long: with a summary beyond that, a chunk moves in memory once more.
constexpr std::size_t someEnd = 64UL * 1024;

Bytes compressed(ByteView records, std::size_t room)
{
    Bytes stored(room + ZSTD_compressBound(records.size()));
    const std::size_t length =
        ZSTD_compress(stored.data() + room, stored.size() - room, records.data(), records.size(), ZSTD_CLEVEL_DEFAULT);
    if (ZSTD_isError(length) != 0)
        throw std::runtime_error(std::string("a chunk cannot be compressed: ") + ZSTD_getErrorName(length));
    stored.resize(room + length);
    return stored;
}

Bytes headOf(const ChunkIndex& index, std::uint32_t recordsChecksum)
{
    Bytes head;
    RecordBytes record(head);
    record.number(Op::Chunk);
    record.number(index._length - frameSize);
    record.number(index._times._start);
    record.number(index._times._end);
    record.number(index._size);
    record.number(recordsChecksum);
    record.text(index._compression);
    record.number(index._stored);
    return head;
}

ChunkMessages byChannel(const std::vector<std::pair<std::uint16_t, IndexEntry>>& entries)
{
    ChunkMessages messages;
    auto last = messages.end();
    for (const auto& [channel, entry] : entries) {
        if (last == messages.end() || last->first != channel)
            last = messages.try_emplace(channel).first;
        last->second.push_back(entry);
    }
    return messages;
}
} // namespace

ChunkBuilder::ChunkBuilder() : _bytes(headRoom) {}

void ChunkBuilder::reserve(std::size_t bytes, std::size_t messages)
{
    _bytes.reserve(bytes + messages * sizeof(IndexEntry) + someEnd);
    _index.reserve(messages);
}

void ChunkBuilder::sumUp()
{
    const ByteView records = ByteView(_bytes).subspan(headRoom);
    _checksum = checksum(records.subspan(_summed), _checksum);
    _summed = records.size();
}

void ChunkBuilder::clear()
{
    _bytes.resize(headRoom);
    _index.clear();
    _schemas.clear();
    _channels.clear();
    _times = {};
    _checksum = 0;
    _summed = 0;
}

void ChunkBuilder::add(const Schema& schema)
{
    RecordBytes(_bytes).schema(schema);
    _schemas.push_back(schema);
}

void ChunkBuilder::add(const Channel& channel)
{
    RecordBytes(_bytes).channel(channel);
    _channels.push_back(channel);
}

void ChunkBuilder::add(const Message& message)
{
    _index.push_back({message._channel, {message._logTime, size() - headRoom}});
    _times.add(message._logTime);
    RecordBytes(_bytes).message(message);
}

ChunkBuilder::Packed ChunkBuilder::pack(std::uint64_t offset, Compression compression)
{
    Packed packed{_bytes, 0, {}, {}};
    ChunkIndex& index = packed._index;
    const ByteView records = ByteView(_bytes).subspan(headRoom);
    sumUp();
    const std::uint32_t sum = _checksum;
    index._times = _times;
    index._offset = offset;
    index._size = records.size();
    if (compression == Compression::Zstd) {
        index._compression = "zstd";
        _bytes = compressed(records, headRoom + index._compression.size());
    }
    index._length = _bytes.size();
    const std::size_t room = headRoom + index._compression.size();
    index._stored = _bytes.size() - room;
    const Bytes head = headOf(index, sum);
    std::copy(head.begin(), head.end(), _bytes.begin());
    const std::uint32_t storedSum = index._compression.empty() ? sum : checksum(ByteView(_bytes).subspan(room));
    packed._checksum = joinedChecksum(checksum(head), storedSum, index._stored);

    packed._messages = byChannel(_index);
    appendMessageIndexes(_bytes, offset, packed._messages, index);
    packed._checksum = checksum(ByteView(_bytes).subspan(index._length), packed._checksum);
    return packed;
}

void appendMessageIndexes(Bytes& bytes, std::uint64_t offset, const ChunkMessages& messages, ChunkIndex& index)
{
    RecordBytes record(bytes);
    const std::size_t begin = bytes.size();
    for (const auto& [channel, entries] : messages) {
        index._indexOffsets[channel] = offset + bytes.size();
        record.open(Op::MessageIndex);
        record.number(channel);
        record.number(static_cast<std::uint32_t>(entries.size() * sizeof(IndexEntry)));
        record.raw(std::as_bytes(std::span(entries)));
        record.close();
    }
    index._indexLength = bytes.size() - begin;
}
} // namespace Monitor::Mcap
