#include "monitor/mcap/read/Reader.h"

#include "monitor/mcap/format/ByteCursor.h"
#include "monitor/mcap/format/RecordBytes.h"
#include "monitor/mcap/read/CheckpointSearch.h"
#include "monitor/mcap/read/FileEnd.h"

#include <algorithm>

namespace Monitor::Mcap {

namespace {

bool isSame(std::vector<IndexEntry> one, std::vector<IndexEntry> other)
{
    if (one == other)
        return true;
    std::ranges::sort(one); // some writers sort by time
    std::ranges::sort(other);
    return one == other;
}

// What a flush ends with: nothing of it is begun before all in front of it is on the disk.
bool isAddition(Op op)
{
    return op == Op::Chunk || op == Op::Attachment || op == Op::Metadata;
}
} // namespace

FileState Reader::read()
{
    _state._size = _file.size();
    _state._verdict = FileState::Verdict::Stopped;
    if (!begins())
        return _state;
    while (step())
        if (!_visitor.goOn(_at, _state._size))
            return _state;
    endChunk();
    _state._verdict = verdict();
    return _state;
}

// Else it says what is wrong. A file may have been cut in its first write, too.
bool Reader::begins()
{
    _record.resize(static_cast<std::size_t>(std::min<std::uint64_t>(magic.size(), _state._size)));
    if (!_file.read(0, _record) || asText(_record) != magic.substr(0, _record.size())) {
        _state._verdict = FileState::Verdict::Foreign;
        _state._problem = "it does not begin as MCAP";
        return false;
    }
    _state._checksum = checksum(_record);
    _state._end = _at = magic.size();
    return true;
}

FileState::Verdict Reader::verdict() const
{
    using Verdict = FileState::Verdict;
    return _state._problem.empty() ? Verdict::Whole : _confirmed || _isStrict ? Verdict::Damaged : Verdict::Cut;
}

void Reader::problem(std::uint64_t offset, const std::string& what)
{
    if (!_state._problem.empty())
        return;
    _state._problem = "at byte " + std::to_string(offset) + ": " + what;
    _isCut = isCutAt(offset);
}

// Where it cannot, what follows will tell.
bool Reader::isCutAt(std::uint64_t offset)
{
    const bool mayHaveCheckpoints = _hasCheckpoints || _accepted < 2; // the first one stands behind the header
    if (!mayHaveCheckpoints || isSealed(_file))
        return false;
    const CheckpointSearch behind(_file, offset);
    if (!behind.last() && behind.isWhole() && !_hasCheckpoints)
        return false;
    const bool isUnknown = !behind.isWhole() && !_file.isBeingWritten();
    _confirmed = isUnknown || (behind.last() && behind.last()->_confirmed > offset);
    return !_confirmed;
}

std::optional<Reader::Frame> Reader::frameAt(std::uint64_t offset)
{
    std::array<std::byte, frameSize> bytes;
    if (offset + frameSize > _state._size || !_file.read(offset, bytes))
        return std::nullopt;
    ByteCursor cursor(bytes);
    const auto op = cursor.number<Op>();
    const auto length = cursor.number<std::uint64_t>();
    if (op == Op{} || length > maxRecord || length > _state._size - offset - frameSize)
        return std::nullopt;
    return Frame{op, offset, frameSize + length};
}

bool Reader::load(const Frame& frame)
{
    _record.resize(static_cast<std::size_t>(frame._length));
    return _file.read(frame._offset, _record);
}

// False at the end.
bool Reader::step()
{
    const auto frame = frameAt(_at);
    if (!frame || frame->_op != Op::MessageIndex)
        endChunk();
    if (_isCut && !(frame && frame->_op == Op::DataEnd))
        return skip(_at, std::nullopt);
    const bool isHeader = frame && frame->_op == Op::Header;
    if (!frame || isHeader != (_at == magic.size()) || !load(*frame)) {
        problem(_at, _at == _state._size ? "the end is missing" : "no whole record of the right kind");
        return skip(_at, std::nullopt);
    }
    if (frame->_op == Op::DataEnd) {
        readEnd(*frame);
        return false;
    }
    if (const std::string fault = visit(*frame); !fault.empty()) {
        problem(_at, fault);
        return skip(_at, frame);
    }
    accept(*frame);
    _at = frame->end();
    return true;
}

void Reader::accept(const Frame& frame)
{
    if (!_state._problem.empty()) {
        _confirmed = _confirmed || isAddition(frame._op);
        return;
    }
    ++_accepted;
    _state._end = frame.end();
    _state._checksum = checksum(_record, _state._checksum);
    if (frame._op == Op::Chunk)
        _chunkChecksum = _state._checksum;
}

// To the next chunk, wherever it is; where there is none, to what the frame says, or the footer. Behind a cut only
// that.
bool Reader::skip(std::uint64_t from, const std::optional<Frame>& frame)
{
    if (const auto chunk = _isCut ? std::nullopt : _search.next(from + 1))
        _at = *chunk;
    else if (!_isCut && frame && frameAt(frame->end()))
        _at = frame->end();
    else if (const auto end = dataEndByFooter(_file); end && *end > from)
        _at = *end;
    else
        return false;
    _state._lost += _at - from;
    return true;
}

std::string Reader::visit(const Frame& frame)
{
    switch (frame._op) {
    case Op::Header: {
        ByteCursor cursor(content());
        const std::string_view profile = cursor.text();
        const std::string_view library = cursor.text();
        if (!cursor.ok())
            return "the header is too short";
        _visitor.header(profile, library);
        return {};
    }
    case Op::Chunk:
        return visitChunk(frame);
    case Op::MessageIndex:
        return visitMessageIndex(frame);
    case Op::Attachment:
        return visitAttachment(frame);
    case Op::Metadata:
        return visitMetadata(frame);
    case Op::Checkpoint:
        return visitCheckpoint(frame);
    default:
        const std::string fault = _table.visit({frame._op, content()});
        return fault.empty() ? fault : "a record " + fault;
    }
}

std::string Reader::visitChunk(const Frame& frame)
{
    const auto head = parseChunk(content());
    if (!head)
        return "a chunk is too short for its fields";
    std::string fault;
    const auto records = chunkRecords(*head, _unpacked, fault);
    if (!records)
        return "a chunk cannot be read: " + fault;
    ChunkPlace place;
    if (fault = _table.visitAll(*records, place._messages); !fault.empty())
        return "a record in a chunk " + fault;
    for (const auto& [channel, entries] : place._messages)
        for (const IndexEntry& entry : entries)
            place._index._times.add(entry._logTime);
    place._index._offset = frame._offset;
    place._index._length = frame._length;
    place._index._compression = head->_compression;
    place._index._stored = head->_stored.size();
    place._index._size = head->_size;
    _chunks[frame._offset] = frame._length;
    _chunk = std::move(place);
    _isChunkFirst = _state._problem.empty();
    return {};
}

std::string Reader::visitMessageIndex(const Frame& frame)
{
    const auto index = parseMessageIndex(content());
    if (!index || !_chunk)
        return "an index of messages is too short or behind no chunk";
    const auto messages = _chunk->_messages.find(index->_channel);
    const bool isEmpty = index->_entries.empty() && messages == _chunk->_messages.end();
    if (!isEmpty && (messages == _chunk->_messages.end() || !isSame(index->_entries, messages->second)))
        return "an index of messages does not fit its chunk";
    _chunk->_index._indexOffsets[index->_channel] = frame._offset;
    _chunk->_index._indexLength += frame._length;
    return {};
}

void Reader::endChunk()
{
    if (!_chunk)
        return;
    ChunkIndex& index = _chunk->_index;
    _chunk->_isIndexed = std::ranges::all_of(
        _chunk->_messages, [&index](const auto& row) { return index._indexOffsets.contains(row.first); });
    if (!_chunk->_isIndexed && _isChunkFirst) {
        _state._end = index._offset + index._length;
        _state._checksum = _chunkChecksum;
    }
    if (!_chunk->_isIndexed && !index._indexOffsets.empty())
        problem(_state._end, "indexes of messages are missing behind a chunk");
    _visitor.chunk(*_chunk);
    _chunk.reset();
}

std::string Reader::visitAttachment(const Frame& frame)
{
    const auto attachment = parseAttachment(content());
    if (!attachment)
        return "an attachment is too short, or its checksum is wrong";
    _visitor.attachment(*attachment, frame._offset, frame._length);
    return {};
}

std::string Reader::visitMetadata(const Frame& frame)
{
    const auto metadata = parseMetadata(content());
    if (!metadata)
        return "metadata are too short for their fields";
    _visitor.metadata(*metadata, frame._offset, frame._length);
    return {};
}

// Other writers may have another use for the opcode.
std::string Reader::visitCheckpoint(const Frame& frame)
{
    const auto checkpoint = parseCheckpoint(content());
    if (checkpoint && checkpoint->_offset == frame._offset)
        _hasCheckpoints = true;
    else if (_hasCheckpoints)
        return "a checkpoint does not fit its place or its checksum";
    return {};
}

void Reader::readEnd(const Frame& dataEnd)
{
    const auto sum = ByteCursor(content()).number<std::uint32_t>();
    const bool isRight = sum == _state._checksum;
    const FileEnd end = readFileEnd(_file, dataEnd.end(), _chunks);
    // Beside a torn end, a wrong checksum is what stood in its place before. An end that is not torn, and names chunks
    // that cannot be read, was written by who had them.
    _state._sealed = sum != 0 && (isRight || end._isUntorn);
    if (_state._sealed && !isRight)
        problem(dataEnd._offset, "the checksum of all data is wrong");
    _isStrict = _state._sealed && (end._hasMagic || !_state._problem.empty());
    if (!end._problem.empty())
        problem(dataEnd._offset, "the end of the file is torn: " + end._problem);
    _state._indexed = end._hasSummary;
}
} // namespace Monitor::Mcap
