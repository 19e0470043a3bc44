#include "monitor/mcap/write/GrowingFile.h"

namespace Monitor::Mcap {

namespace {

// It grows by some bytes with each chunk, and is written with each: in a long recording it is left to the end.
constexpr std::size_t maxSummary = 1024UL * 1024;

// Bytes that may be lost when the power goes.
constexpr std::uint64_t maxUnconfirmed = 32UL * 1024 * 1024;
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
    replaceTail(bytes, sum, true);
    return confirm(); // whatever comes then, there is a file
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
    const ChunkBuilder::Packed packed = chunk.pack(_written->_end, _compression);
    _summary.add(packed._index, packed._messages);
    return replaceTail(packed._bytes, packed._checksum, _summary.size() <= maxSummary);
}

std::error_code GrowingFile::add(const Attachment& attachment)
{
    Bytes bytes;
    RecordBytes(bytes).attachment(attachment);
    _summary.add(attachment, _written->_end, bytes.size());
    return addRecord(bytes);
}

std::error_code GrowingFile::add(const Metadata& metadata)
{
    Bytes bytes;
    RecordBytes(bytes).metadata(metadata);
    _summary.add(metadata, _written->_end, bytes.size());
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
    const std::uint64_t begin = _written->_end;
    RecordBytes(added).checkpoint({begin + added.size(), _confirmed->_end});
    addedChecksum = checksum(ByteView(added).last(checkpointSize), addedChecksum);
    const std::size_t length = added.size();
    _summary.append(added, begin + length, 0, whole);
    auto next = std::make_shared<State>(
        State{begin + length, joinedChecksum(_written->_checksum, addedChecksum, length), {}, _summary.messages()});
    next->_tail.assign(added.begin() + static_cast<std::ptrdiff_t>(length), added.end());
    std::error_code error = _file->write(begin, added);
    // A file is refused by others for one byte behind its magic.
    if (!error && added.size() < _written->_tail.size())
        error = _file->setSize(begin + added.size());
    if (error)
        return confirm() ? _failure : fail(error); // what was written before stays
    _written = std::move(next);
    const bool isBusy = _sync.valid() && _sync.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
    if (isBusy && _written->_end - _confirmed->_end < maxUnconfirmed)
        return {};
    if (!endSync())
        beginSync();
    return _failure;
}

void GrowingFile::beginSync()
{
    _sync = _file->sync();
    _syncing = _written;
}

std::error_code GrowingFile::endSync()
{
    if (!_sync.valid())
        return _failure;
    if (const std::error_code error = _sync.get())
        return fail(error);
    _confirmed = std::move(_syncing);
    return {};
}

std::error_code GrowingFile::confirm()
{
    if (!endSync() && _written != _confirmed) {
        beginSync();
        endSync();
    }
    return _failure;
}

std::error_code GrowingFile::confirmWhatIsThere()
{
    if (_sync.valid() && _sync.wait_for(std::chrono::seconds(0)) == std::future_status::timeout)
        return _failure;
    if (!endSync() && _written != _confirmed)
        beginSync();
    return _failure;
}

std::error_code GrowingFile::fail(std::error_code error)
{
    _failure = error;
    _written = _confirmed;
    _isTorn = !putBack();
    return _failure;
}

// Where this fails, too, walking through the file finds all that was confirmed.
bool GrowingFile::putBack()
{
    return !_file->write(_confirmed->_end, _confirmed->_tail) && !_file->setSize(size()) && !_file->sync().get();
}

std::error_code GrowingFile::close()
{
    confirm();
    // Its checkpoint says that all is there.
    if (Bytes nothing; !_failure)
        replaceTail(nothing, 0, true);
    confirm();
    if (_confirmed->_tail.empty() || _isTorn)
        return _failure;
    Bytes sum;
    RecordBytes(sum).number(_confirmed->_checksum);
    std::error_code sealed = _file->write(_confirmed->_end + frameSize, sum);
    if (!sealed)
        sealed = _file->sync().get();
    if (sealed)
        putBack(); // half a checksum would be a wrong one
    return _failure ? _failure : sealed;
}
} // namespace Monitor::Mcap
