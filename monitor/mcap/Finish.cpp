#include "monitor/mcap/Finish.h"

#include "explain/text/Escape.h"
#include "monitor/mcap/write/ChunkBuilder.h"
#include "monitor/mcap/write/OutputFile.h"
#include "monitor/mcap/write/Summary.h"

#include <stdexcept>

namespace Monitor::Mcap {

namespace {

// Builds the summary anew from what is there.
class Rebuild final : public Visitor {
public:
    explicit Rebuild(const std::function<bool(std::uint64_t, std::uint64_t)>& goOn) : _goOn(goOn) {}

    void schema(const Schema& schema) override { _summary.add(schema); }
    void channel(const Channel& channel) override { _summary.add(channel); }
    void message(const Message&) override { ++_messages; }
    void chunk(const ChunkPlace& place) override
    {
        addLast();
        _last = place;
    }
    void attachment(const Attachment& attachment, std::uint64_t offset, std::uint64_t length) override
    {
        _summary.add(attachment, offset, length);
    }
    void metadata(const Metadata& metadata, std::uint64_t offset, std::uint64_t length) override
    {
        _summary.add(metadata, offset, length);
    }
    bool goOn(std::uint64_t read, std::uint64_t size) override { return _goOn(read, size); }

    // Whether readers by index will find everything once the file has an end.
    bool canBeIndexed() const { return !_unindexed && _messages == _inChunks + messagesOf(_last); }

    /// What the file needs from `state._end` on, and then, when that is on the disk, the checksum of its data.
    struct End {
        Bytes _bytes;
        std::uint64_t _dataEnd;
        std::uint32_t _checksum;
    };
    End end(const FileState& state)
    {
        Bytes bytes;
        if (_last && !_last->_isIndexed) {
            _last->_index._indexOffsets.clear();
            appendMessageIndexes(bytes, state._end, _last->_messages, _last->_index);
            _last->_isIndexed = true;
        }
        addLast();
        const std::uint64_t dataEnd = state._end + bytes.size();
        const std::uint32_t sum = checksum(bytes, state._checksum);
        _summary.append(bytes, dataEnd, 0, true);
        return {std::move(bytes), dataEnd, sum};
    }

private:
    static std::uint64_t messagesOf(const std::optional<ChunkPlace>& place)
    {
        std::uint64_t count = 0;
        if (place)
            for (const auto& [channel, entries] : place->_messages)
                count += entries.size();
        return count;
    }

    // Only behind the last chunk indexes can be added.
    void addLast()
    {
        if (!_last)
            return;
        _unindexed = _unindexed || !_last->_isIndexed;
        _inChunks += messagesOf(_last);
        _summary.add(_last->_index, _last->_messages);
        _last.reset();
    }

    const std::function<bool(std::uint64_t, std::uint64_t)>& _goOn;
    Summary _summary;
    std::optional<ChunkPlace> _last;
    bool _unindexed = false;
    std::uint64_t _messages = 0, _inChunks = 0;
};

[[noreturn]] void refuse(const std::string& path, const std::string& why)
{
    throw std::runtime_error("recording " + Explain::inQuotes(path) + " cannot be finished: " + why);
}

void require(const std::string& path, const std::error_code& error)
{
    if (error)
        refuse(path, error.message());
}
} // namespace

FileState finishFile(const std::string& path, const std::function<bool(std::uint64_t, std::uint64_t)>& goOn)
{
    const auto output = OutputFile::open(path); // first, so that nobody writes meanwhile
    const auto input = InputFile::open(path);
    Rebuild rebuild(goOn);
    const FileState state = Reader(*input, rebuild).read();
    using Verdict = FileState::Verdict;
    if (state._verdict == Verdict::Stopped || (state._verdict == Verdict::Whole && state._indexed))
        return state;
    if (state._verdict == Verdict::Foreign || state._end <= magic.size())
        refuse(path, state._problem.empty() ? "it has no header" : state._problem);
    if (state._verdict == Verdict::Damaged)
        refuse(path,
               "it is damaged " + state._problem + "; what can be read goes into a new file by 'recording export'");
    if (!rebuild.canBeIndexed())
        refuse(path,
               "another program wrote it without indexes of messages; 'recording export' makes a new file with them");
    const Rebuild::End end = rebuild.end(state);
    require(path, output->write(state._end, end._bytes));
    require(path, output->setSize(state._end + end._bytes.size()));
    require(path, output->sync().get());
    Bytes sum;
    RecordBytes(sum).number(end._checksum);
    require(path, output->write(end._dataEnd + frameSize, sum));
    require(path, output->sync().get());
    return state;
}
} // namespace Monitor::Mcap
