#include "monitor/mcap/write/Summary.h"

namespace Monitor::Mcap {

namespace {

template <class Number>
void appendMap(RecordBytes& record, const std::map<std::uint16_t, Number>& map)
{
    record.number(static_cast<std::uint32_t>(map.size() * (2 + sizeof(Number))));
    for (const auto& [key, value] : map) {
        record.number(key);
        record.number(value);
    }
}
} // namespace

void Summary::add(const Schema& schema)
{
    next(_schemas).schema(schema);
}

void Summary::add(const Channel& channel)
{
    next(_channels).channel(channel);
}

void Summary::add(const ChunkIndex& chunk, const ChunkMessages& messages)
{
    RecordBytes record = next(_chunks);
    record.open(Op::ChunkIndex);
    record.number(chunk._times._start);
    record.number(chunk._times._end);
    record.number(chunk._offset);
    record.number(chunk._length);
    appendMap(record, chunk._indexOffsets);
    record.number(chunk._indexLength);
    record.text(chunk._compression);
    record.number(chunk._stored);
    record.number(chunk._size);
    record.close();
    _times.add(chunk._times);
    for (const auto& [channel, entries] : messages) {
        _messagesOf[channel] += entries.size();
        _messages += entries.size();
    }
}

void Summary::add(const Attachment& attachment, std::uint64_t offset, std::uint64_t length)
{
    RecordBytes record = next(_attachments);
    record.open(Op::AttachmentIndex);
    record.number(offset);
    record.number(length);
    record.number(attachment._logTime);
    record.number(attachment._createTime);
    record.number(static_cast<std::uint64_t>(attachment._data.size()));
    record.text(attachment._name);
    record.text(attachment._mediaType);
    record.close();
}

void Summary::add(const Metadata& metadata, std::uint64_t offset, std::uint64_t length)
{
    RecordBytes record = next(_metadata);
    record.open(Op::MetadataIndex);
    record.number(offset);
    record.number(length);
    record.text(metadata._name);
    record.close();
}

std::size_t Summary::size() const
{
    std::size_t size = 0;
    for (const Group* group : {&_schemas, &_channels, &_chunks, &_attachments, &_metadata})
        size += group->_records.size();
    return size + 10 * _messagesOf.size() + 200;
}

Summary::Group Summary::statistics() const
{
    Group group{Op::Statistics, {}, 1};
    RecordBytes record(group._records);
    record.open(Op::Statistics);
    record.number(_messages);
    record.number(static_cast<std::uint16_t>(_schemas._count));
    record.number(_channels._count);
    record.number(_attachments._count);
    record.number(_metadata._count);
    record.number(_chunks._count);
    record.number(_times._start);
    record.number(_times._end);
    appendMap(record, _messagesOf);
    record.close();
    return group;
}

void Summary::append(Bytes& bytes, std::uint64_t offset, std::uint32_t dataChecksum, bool whole) const
{
    const std::size_t begin = bytes.size();
    const auto here = [&] { return offset + (bytes.size() - begin); };
    RecordBytes record(bytes);
    record.open(Op::DataEnd);
    record.number(dataChecksum);
    record.close();

    const std::size_t covered = bytes.size();
    Bytes offsets;
    std::uint64_t start = 0, offsetStart = 0;
    if (whole) {
        start = here();
        const Group statistics = this->statistics();
        for (const Group* group : {&_schemas, &_channels, &_chunks, &_attachments, &_metadata, &statistics}) {
            if (group->_count == 0)
                continue;
            RecordBytes place(offsets);
            place.open(Op::SummaryOffset);
            place.number(group->_op);
            place.number(here());
            place.number(static_cast<std::uint64_t>(group->_records.size()));
            place.close();
            record.raw(group->_records);
        }
        offsetStart = here();
        record.raw(offsets);
    }
    record.open(Op::Footer);
    record.number(start);
    record.number(offsetStart);
    record.put(bytes.size() - 24, std::uint64_t{20}); // the checksum covers the length, too
    record.number(whole ? checksum(ByteView(bytes).subspan(covered)) : std::uint32_t{0});
    record.raw(magic);
}
} // namespace Monitor::Mcap
