#include "monitor/mcap/read/FileEnd.h"

#include "monitor/mcap/format/ByteCursor.h"
#include "monitor/mcap/format/RecordBytes.h"
#include "monitor/mcap/format/RecordParts.h"

#include <set>

namespace Monitor::Mcap {

namespace {

using Chunks = std::map<std::uint64_t, std::uint64_t>;

bool mayStandInSummary(Op op)
{
    return op != Op::Header && op != Op::Footer && op != Op::Message && op != Op::Chunk && op != Op::MessageIndex &&
           op != Op::Attachment && op != Op::Metadata && op != Op::DataEnd;
}

/// Goes through a summary record by record: that of hours with a thousand slots is larger than what should be in
/// memory at once.
class SummaryWalk {
public:
    SummaryWalk(InputFile& file, std::uint64_t from, std::uint64_t end, const Chunks& chunks)
        : _file(file), _end(end), _chunks(chunks), _at(from)
    {
    }

    /// Whether it is made of whole records, such as stand in a summary.
    bool isWhole()
    {
        while (_at != _end)
            if (!next())
                return false;
        return true;
    }

    // Once it was found whole.
    bool namesWhatIsThere() const { return !_namesOthers && _named.size() == _chunks.size(); }
    std::uint32_t sum() const { return _sum; }

private:
    bool next()
    {
        std::array<std::byte, frameSize> frame;
        if (_end - _at < frame.size() || !_file.read(_at, frame))
            return false;
        ByteCursor cursor(frame);
        const auto op = cursor.number<Op>();
        const auto length = cursor.number<std::uint64_t>();
        if (!mayStandInSummary(op) || length > maxRecord || length > _end - _at - frame.size())
            return false;
        _content.resize(static_cast<std::size_t>(length));
        if (!_file.read(_at + frame.size(), _content))
            return false;
        _sum = checksum(_content, checksum(frame, _sum));
        _at += frame.size() + length;
        if (op == Op::ChunkIndex)
            note(parseChunkIndex(_content));
        return true;
    }

    void note(const std::optional<ChunkIndex>& index)
    {
        const auto chunk = index ? _chunks.find(index->_offset) : _chunks.end();
        const bool isThere = chunk != _chunks.end() && chunk->second == index->_length;
        _namesOthers = _namesOthers || !isThere || !_named.insert(chunk->first).second;
    }

    InputFile& _file;
    const std::uint64_t _end;
    const Chunks& _chunks;
    std::uint64_t _at;
    Bytes _content;
    std::uint32_t _sum = 0;
    std::set<std::uint64_t> _named;
    bool _namesOthers = false; // chunks that are not there, or one twice
};
} // namespace

std::optional<std::uint64_t> dataEndByFooter(InputFile& file)
{
    std::array<std::byte, footerSize + magic.size()> bytes;
    if (file.size() < bytes.size() || !file.read(file.size() - bytes.size(), bytes))
        return std::nullopt;
    ByteCursor footer(bytes);
    const bool isFooter = footer.number<Op>() == Op::Footer && footer.number<std::uint64_t>() == footerSize - frameSize;
    const auto start = footer.number<std::uint64_t>();
    if (!isFooter || asText(footer.rest().last(magic.size())) != magic || start < dataEndSize || start > file.size())
        return std::nullopt;
    return start - dataEndSize;
}

bool isSealed(InputFile& file)
{
    const auto dataEnd = dataEndByFooter(file);
    std::array<std::byte, dataEndSize> bytes;
    if (!dataEnd || !file.read(*dataEnd, bytes))
        return false;
    ByteCursor cursor(bytes);
    return cursor.number<Op>() == Op::DataEnd && cursor.number<std::uint64_t>() == dataEndSize - frameSize &&
           cursor.number<std::uint32_t>() != 0;
}

FileEnd readFileEnd(InputFile& file, std::uint64_t from, const Chunks& chunks)
{
    std::array<std::byte, footerSize + magic.size()> bytes;
    if (file.size() - from < bytes.size())
        return {"there is no footer"};
    const std::uint64_t summaryEnd = file.size() - bytes.size();
    if (!file.read(summaryEnd, bytes))
        return {"it cannot be read"};
    const bool hasMagic = asText(ByteView(bytes).last(magic.size())) == magic;
    ByteCursor footer(bytes);
    const auto op = footer.number<Op>();
    const auto size = footer.number<std::uint64_t>();
    const auto start = footer.number<std::uint64_t>();
    footer.number<std::uint64_t>();
    const auto sum = footer.number<std::uint32_t>();
    if (op != Op::Footer || size != footerSize - frameSize || !hasMagic)
        return {"footer and magic are not where they belong", false, hasMagic};
    if (start == 0)
        return {summaryEnd == from ? "" : "its footer names no summary", false, hasMagic, summaryEnd == from};
    SummaryWalk summary(file, from, summaryEnd, chunks);
    const ByteView covered = ByteView(bytes).first(footerSize - sizeof sum);
    if (start != from || !summary.isWhole() || (sum != 0 && checksum(covered, summary.sum()) != sum))
        return {"its summary is torn", false, hasMagic};
    if (!summary.namesWhatIsThere())
        return {"its summary does not name what is there", false, hasMagic, true};
    return {"", true, hasMagic, true};
}
} // namespace Monitor::Mcap
