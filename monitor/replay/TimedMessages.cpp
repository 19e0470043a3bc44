#include "monitor/replay/TimedMessages.h"

#include "monitor/mcap/format/RecordBytes.h"

#include <algorithm>
#include <stdexcept>

namespace Monitor {

namespace {

using namespace Mcap;

[[noreturn]] void refuse(const RecordedChunk& chunk, const std::string& what)
{
    throw std::runtime_error("the chunk at byte " + std::to_string(chunk._offset) + " " + what);
}
} // namespace

struct TimedMessages::OpenChunk {
    Bytes _record, _unpacked;       // the messages refer to one of them
    std::vector<Message> _messages; // by time
    std::size_t _next = 0;

    std::uint64_t time() const { return _messages[_next]._logTime; }
    std::uint64_t bytes() const { return _record.size() + _unpacked.size(); }
};

TimedMessages::TimedMessages(InputFile& file, std::vector<RecordedChunk> chunks, std::set<std::uint16_t> channels)
    : _file(file), _chunks(std::move(chunks)), _channels(std::move(channels))
{
}

TimedMessages::~TimedMessages() = default;

TimedMessages::OpenChunk* TimedMessages::first() const
{
    const auto found = std::ranges::min_element(_open, {}, [](const auto& chunk) { return chunk->time(); });
    return found == _open.end() ? nullptr : found->get();
}

std::optional<Message> TimedMessages::next()
{
    // Here, not when its last message was handed out, for that one's bytes were still needed.
    std::erase_if(_open, [this](const auto& chunk) {
        const bool isDone = chunk->_next == chunk->_messages.size();
        _held -= isDone ? chunk->bytes() : 0;
        return isDone;
    });
    OpenChunk* earliest = first();
    while (_opened < _chunks.size() && (!earliest || _chunks[_opened]._times._start < earliest->time())) {
        open(_chunks[_opened++]);
        earliest = first();
    }
    if (!earliest)
        return std::nullopt;
    return earliest->_messages[earliest->_next++];
}

void TimedMessages::open(const RecordedChunk& chunk)
{
    auto opened = std::make_unique<OpenChunk>();
    if (chunk._length > maxRecord - std::min(_held, maxRecord))
        refuse(chunk, "overlaps in time with more others than can be held in memory");
    opened->_record.resize(static_cast<std::size_t>(chunk._length));
    const bool isRead = _file.read(chunk._offset, opened->_record);
    const auto head = isRead ? parseChunk(ByteView(opened->_record).subspan(frameSize)) : std::nullopt;
    std::string problem;
    auto records = head ? chunkRecords(*head, opened->_unpacked, problem) : std::nullopt;
    if (!records)
        refuse(chunk, "cannot be read any more");
    while (const auto record = takeRecord(*records))
        if (const auto message = record->_op == Op::Message ? parseMessage(record->_content) : std::nullopt)
            if (_channels.contains(message->_channel))
                opened->_messages.push_back(*message);
    std::ranges::stable_sort(opened->_messages, {}, &Message::_logTime);
    if (opened->_messages.empty())
        return;
    _held += opened->bytes();
    _open.push_back(std::move(opened));
}
} // namespace Monitor
