#include "monitor/mcap/format/RecordParts.h"

#include "explain/text/Escape.h"
#include "monitor/mcap/format/ByteCursor.h"
#include "monitor/mcap/format/RecordBytes.h"

#include <zstd.h>

namespace Monitor::Mcap {

namespace {

template <class Part>
std::optional<Part> ifWhole(const ByteCursor& cursor, Part part)
{
    return cursor.ok() ? std::optional<Part>(std::move(part)) : std::nullopt;
}

// No frame of zstd grows by more than this: a block of 128 KiB takes 4 bytes at least.
constexpr std::uint64_t maxGrowth = 32'768;

bool decompress(const ChunkHead& head, Bytes& buffer)
{
    if (head._size > maxRecord || head._size / maxGrowth > head._stored.size())
        return false;
    buffer.resize(static_cast<std::size_t>(head._size));
    return ZSTD_decompress(buffer.data(), buffer.size(), head._stored.data(), head._stored.size()) == buffer.size();
}
} // namespace

std::optional<Schema> parseSchema(ByteView content)
{
    ByteCursor cursor(content);
    Schema schema;
    schema._id = cursor.number<std::uint16_t>();
    schema._name = cursor.text();
    schema._encoding = cursor.text();
    schema._text = cursor.text();
    return ifWhole(cursor, std::move(schema));
}

std::optional<Channel> parseChannel(ByteView content)
{
    ByteCursor cursor(content);
    Channel channel;
    channel._id = cursor.number<std::uint16_t>();
    channel._schema = cursor.number<std::uint16_t>();
    channel._topic = cursor.text();
    channel._encoding = cursor.text();
    channel._metadata = cursor.texts();
    return ifWhole(cursor, std::move(channel));
}

std::optional<Message> parseMessage(ByteView content)
{
    ByteCursor cursor(content);
    Message message;
    message._channel = cursor.number<std::uint16_t>();
    message._sequence = cursor.number<std::uint32_t>();
    message._logTime = cursor.number<std::uint64_t>();
    message._publishTime = cursor.number<std::uint64_t>();
    message._data = cursor.rest();
    return ifWhole(cursor, message);
}

std::optional<ChunkHead> parseChunk(ByteView content)
{
    ByteCursor cursor(content);
    ChunkHead head;
    head._start = cursor.number<std::uint64_t>();
    head._end = cursor.number<std::uint64_t>();
    head._size = cursor.number<std::uint64_t>();
    head._checksum = cursor.number<std::uint32_t>();
    head._compression = cursor.text();
    head._stored = cursor.bytes(cursor.number<std::uint64_t>());
    return ifWhole(cursor, head);
}

std::optional<MessageIndex> parseMessageIndex(ByteView content)
{
    ByteCursor cursor(content);
    MessageIndex index;
    index._channel = cursor.number<std::uint16_t>();
    ByteCursor entries(cursor.bytes(cursor.number<std::uint32_t>()));
    index._entries.reserve(entries.left() / sizeof(IndexEntry));
    while (entries.ok() && entries.left() > 0) {
        const auto time = entries.number<std::uint64_t>();
        index._entries.push_back({time, entries.number<std::uint64_t>()});
    }
    return entries.ok() ? ifWhole(cursor, std::move(index)) : std::nullopt;
}

std::optional<ChunkIndex> parseChunkIndex(ByteView content)
{
    ByteCursor cursor(content);
    ChunkIndex index;
    index._times.add(cursor.number<std::uint64_t>());
    index._times.add(cursor.number<std::uint64_t>());
    index._offset = cursor.number<std::uint64_t>();
    index._length = cursor.number<std::uint64_t>();
    ByteCursor offsets(cursor.bytes(cursor.number<std::uint32_t>()));
    while (offsets.ok() && offsets.left() > 0) {
        const auto channel = offsets.number<std::uint16_t>();
        index._indexOffsets[channel] = offsets.number<std::uint64_t>();
    }
    index._indexLength = cursor.number<std::uint64_t>();
    index._compression = cursor.text();
    index._stored = cursor.number<std::uint64_t>();
    index._size = cursor.number<std::uint64_t>();
    return offsets.ok() ? ifWhole(cursor, std::move(index)) : std::nullopt;
}

std::optional<Attachment> parseAttachment(ByteView content)
{
    ByteCursor cursor(content);
    Attachment attachment;
    attachment._logTime = cursor.number<std::uint64_t>();
    attachment._createTime = cursor.number<std::uint64_t>();
    attachment._name = cursor.text();
    attachment._mediaType = cursor.text();
    attachment._data = cursor.bytes(cursor.number<std::uint64_t>());
    const std::size_t covered = content.size() - cursor.left();
    const auto sum = cursor.number<std::uint32_t>();
    if (sum != 0 && cursor.ok() && checksum(content.first(covered)) != sum)
        return std::nullopt;
    return ifWhole(cursor, std::move(attachment));
}

std::optional<Metadata> parseMetadata(ByteView content)
{
    ByteCursor cursor(content);
    Metadata metadata;
    metadata._name = cursor.text();
    metadata._values = cursor.texts();
    return ifWhole(cursor, std::move(metadata));
}

std::optional<Checkpoint> parseCheckpoint(ByteView content)
{
    ByteCursor cursor(content);
    Checkpoint checkpoint;
    checkpoint._offset = cursor.number<std::uint64_t>();
    checkpoint._confirmed = cursor.number<std::uint64_t>();
    const auto sum = cursor.number<std::uint32_t>();
    if (content.size() != checkpointSize - frameSize || sum != checksum(content.first(content.size() - sizeof sum)))
        return std::nullopt;
    return checkpoint;
}

std::optional<RecordView> takeRecord(ByteView& records)
{
    ByteCursor cursor(records);
    const auto op = cursor.number<Op>();
    const ByteView content = cursor.bytes(cursor.number<std::uint64_t>());
    if (!cursor.ok())
        return std::nullopt;
    records = cursor.rest();
    return RecordView{op, content};
}

std::optional<ByteView> chunkRecords(const ChunkHead& head, Bytes& buffer, std::string& problem)
{
    ByteView records = head._stored;
    if (head._compression == "zstd") {
        if (!decompress(head, buffer))
            return problem = "its records cannot be decompressed", std::nullopt;
        records = buffer;
    } else if (!head._compression.empty()) {
        problem = "it is compressed by " + Explain::inQuotes(head._compression) + "; zstd and nothing are read";
        return std::nullopt;
    }
    if (records.size() != head._size)
        return problem = "its records are not as long as it says", std::nullopt;
    if (head._checksum != 0 && checksum(records) != head._checksum)
        return problem = "its checksum is wrong", std::nullopt;
    return records;
}
} // namespace Monitor::Mcap
