// A file that says of itself that it is a recording.
#include "fuzz/Fuzz.h"
#include "monitor/mcap/format/RecordBytes.h"
#include "monitor/mcap/read/Reader.h"
#include "monitor/replay/TimedMessages.h"

namespace Fuzz {

namespace {

using namespace Monitor::Mcap;

/// Everything that is told of was announced before, and lies in the input or in what it unpacks to.
class Witness final : public Visitor {
public:
    void channel(const Channel& channel) override
    {
        require(_channels.emplace(channel._id, channel).second, "a channel is told of once");
    }
    void message(const Message& message) override
    {
        require(_channels.contains(message._channel), "a channel comes before its messages");
        _sum = checksum(message._data, _sum); // reads every byte
        ++_messages;
    }
    void chunk(const ChunkPlace& place) override
    {
        std::uint64_t count = 0;
        for (const auto& [channel, entries] : place._messages)
            count += entries.size();
        require(count <= _messages, "a chunk has only messages that were told of");
    }

private:
    std::map<std::uint16_t, Channel> _channels;
    std::uint64_t _messages = 0;
    std::uint32_t _sum = 0;
};

/// Every message of a chunk comes once, by time.
void replay(InputFile& file)
{
    const Monitor::RecordedFile recorded = Monitor::readRecordedFile(file, {});
    std::set<std::uint16_t> channels;
    for (const Monitor::RecordedChannel& channel : recorded._channels)
        channels.insert(channel._id);
    Monitor::TimedMessages messages(file, recorded._chunks, channels);
    std::uint64_t count = 0, time = 0;
    for (; const auto message = messages.next(); ++count) {
        require(message->_logTime >= time, "messages come by time");
        time = message->_logTime;
    }
    require(count == recorded._messages, "no message of a chunk is left out");
}
} // namespace

void runOnce(std::string_view input)
{
    MemoryInput file(asBytes(input));
    Witness witness;
    const FileState state = Reader(file, witness).read();
    require(state._end <= input.size(), "what is good is in the file");
    require(state._lost <= input.size(), "no more is lost than there was");
    require(state._problem.empty() == (state._verdict == FileState::Verdict::Whole), "what is not whole says why");
    require(state._problem.empty() || isPrintable(state._problem), "a problem can be shown");
    if (state._verdict != FileState::Verdict::Foreign)
        replay(file);
}

} // namespace Fuzz
