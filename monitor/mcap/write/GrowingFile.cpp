#include "monitor/mcap/write/GrowingFile.h"

namespace Monitor::Mcap {

namespace {

// It grows by some bytes with each chunk, and is written with each: in a long recording it is left to the end.
constexpr std::size_t maxSummary = 1024UL * 1024;
} // namespace

std::error_code GrowingFile::begin(std::string_view library)
{
    Bytes bytes;
    RecordBytes record(bytes);
    record.raw(magic);
    record.open(Op::Header);
    record.text(""); // the profile ros2 would forbid channels of JSON
    record.text(library);
    record.close();
    const std::uint32_t sum = checksum(bytes);
    return replaceTail(bytes, sum, true);
}

std::error_code GrowingFile::add(ChunkBuilder& chunk)
{
    const std::error_code error = _failure ? _failure : addChunk(chunk);
    chunk.clear();
    return error;
}

std::error_code GrowingFile::addChunk(ChunkBuilder& chunk)
{
    for (const Schema& schema : chunk.schemas())
        _summary.add(schema);
    for (const Channel& channel : chunk.channels())
        _summary.add(channel);
    const ChunkBuilder::Packed packed = chunk.pack(_end, _compression);
    _summary.add(packed._index, packed._messages);
    return replaceTail(packed._bytes, packed._checksum, _summary.size() <= maxSummary);
}

std::error_code GrowingFile::add(const Attachment& attachment)
{
    Bytes bytes;
    RecordBytes(bytes).attachment(attachment);
    _summary.add(attachment, _end, bytes.size());
    return addRecord(bytes);
}

std::error_code GrowingFile::add(const Metadata& metadata)
{
    Bytes bytes;
    RecordBytes(bytes).metadata(metadata);
    _summary.add(metadata, _end, bytes.size());
    return addRecord(bytes);
}

std::error_code GrowingFile::addRecord(Bytes& record)
{
    const std::uint32_t sum = checksum(record);
    return replaceTail(record, sum, _summary.size() <= maxSummary);
}

std::error_code GrowingFile::replaceTail(Bytes& added, std::uint32_t addedChecksum, bool whole)
{
    if (_failure)
        return _failure;
    const std::size_t length = added.size();
    _summary.append(added, _end + length, 0, whole);
    _failure = _file->write(_end, added);
    // A file is refused by others for one byte behind its magic.
    if (!_failure && added.size() < _tail.size())
        _failure = _file->setSize(_end + added.size());
    if (!_failure)
        _failure = _file->sync();
    if (_failure) {
        putBack();
        return _failure;
    }
    _tail.assign(added.begin() + static_cast<std::ptrdiff_t>(length), added.end());
    _end += length;
    _checksum = joinedChecksum(_checksum, addedChecksum, length);
    _confirmed = _summary.messages();
    _lacksSummary = !whole;
    return {};
}

// Where this fails, too, walking through the file finds all that was confirmed.
void GrowingFile::putBack()
{
    if (!_file->write(_end, _tail) && !_file->setSize(size()))
        _file->sync();
}

std::error_code GrowingFile::close()
{
    if (Bytes nothing; _lacksSummary && !_failure)
        replaceTail(nothing, 0, true);
    if (_tail.empty())
        return _failure;
    Bytes sum;
    RecordBytes(sum).number(_checksum);
    std::error_code sealed = _file->write(_end + frameSize, sum);
    if (!sealed)
        sealed = _file->sync();
    if (sealed)
        putBack(); // half a checksum would be a wrong one
    return _failure ? _failure : sealed;
}
} // namespace Monitor::Mcap
