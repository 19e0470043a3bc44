#include "monitor/mcap/format/RecordBytes.h"

#ifdef OSTREL_HAS_LIBDEFLATE
#include <libdeflate.h>
#endif
#include <zlib.h>

namespace Monitor::Mcap {

void RecordBytes::texts(const Texts& texts)
{
    const std::size_t at = size();
    number(std::uint32_t{0});
    for (const auto& [key, value] : texts) {
        text(key);
        text(value);
    }
    put(at, static_cast<std::uint32_t>(size() - at - 4));
}

void RecordBytes::schema(const Schema& schema)
{
    open(Op::Schema);
    number(schema._id);
    text(schema._name);
    text(schema._encoding);
    text(schema._text);
    close();
}

void RecordBytes::channel(const Channel& channel)
{
    open(Op::Channel);
    number(channel._id);
    number(channel._schema);
    text(channel._topic);
    text(channel._encoding);
    texts(channel._metadata);
    close();
}

// Not by open() and close(): of all records only these come by the ten thousand a second.
void RecordBytes::message(const Message& message)
{
    constexpr std::size_t head = 2 + 4 + 8 + 8;
    const std::size_t at = size();
    _bytes.resize(at + frameSize + head);
    put(at, Op::Message);
    put(at + 1, static_cast<std::uint64_t>(head + message._data.size()));
    put(at + 9, message._channel);
    put(at + 11, message._sequence);
    put(at + 15, message._logTime);
    put(at + 23, message._publishTime);
    raw(message._data);
}

void RecordBytes::attachment(const Attachment& attachment)
{
    open(Op::Attachment);
    const std::size_t content = size();
    number(attachment._logTime);
    number(attachment._createTime);
    text(attachment._name);
    text(attachment._mediaType);
    number(static_cast<std::uint64_t>(attachment._data.size()));
    raw(attachment._data);
    number(checksum(ByteView(_bytes).subspan(content)));
    close();
}

void RecordBytes::metadata(const Metadata& metadata)
{
    open(Op::Metadata);
    text(metadata._name);
    texts(metadata._values);
    close();
}

void RecordBytes::checkpoint(const Checkpoint& checkpoint)
{
    open(Op::Checkpoint);
    const std::size_t content = _bytes.size();
    number(checkpoint._offset);
    number(checkpoint._confirmed);
    number(checksum(ByteView(_bytes).subspan(content)));
    close();
}

std::uint32_t checksum(ByteView bytes, std::uint32_t before)
{
    if (bytes.empty()) // they may stand nowhere, and without an address the libraries begin anew
        return before;
#ifdef OSTREL_HAS_LIBDEFLATE // by instructions made for it, where the processor has them
    return libdeflate_crc32(before, bytes.data(), bytes.size());
#else
    return static_cast<std::uint32_t>(crc32_z(before, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
#endif
}

std::uint32_t joinedChecksum(std::uint32_t first, std::uint32_t second, std::uint64_t length)
{
    return static_cast<std::uint32_t>(crc32_combine(first, second, static_cast<z_off_t>(length)));
}
} // namespace Monitor::Mcap
