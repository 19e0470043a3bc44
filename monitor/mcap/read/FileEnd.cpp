#include "monitor/mcap/read/FileEnd.h"

#include "monitor/mcap/format/ByteCursor.h"
#include "monitor/mcap/format/RecordBytes.h"
#include "monitor/mcap/format/RecordParts.h"

namespace Monitor::Mcap {

namespace {

constexpr std::uint64_t mostEnd = 268'435'456; // bytes of a summary that are read

using Chunks = std::map<std::uint64_t, std::uint64_t>;

bool mayStandInSummary(Op op)
{
    return op != Op::Header && op != Op::Footer && op != Op::Message && op != Op::Chunk && op != Op::MessageIndex &&
           op != Op::Attachment && op != Op::Metadata && op != Op::DataEnd;
}

// Whether the summary is made of whole records, and names exactly these chunks.
bool names(ByteView summary, const Chunks& chunks)
{
    Chunks named;
    while (!summary.empty()) {
        const auto record = takeRecord(summary);
        if (!record || !mayStandInSummary(record->_op))
            return false;
        if (record->_op != Op::ChunkIndex)
            continue;
        const auto index = parseChunkIndex(record->_content);
        if (!index || !named.emplace(index->_offset, index->_length).second)
            return false;
    }
    return named == chunks;
}
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

FileEnd readFileEnd(InputFile& file, std::uint64_t from, const Chunks& chunks)
{
    const std::uint64_t length = file.size() - from;
    if (length < footerSize + magic.size() || length > mostEnd)
        return {"there is no footer"};
    Bytes bytes(static_cast<std::size_t>(length));
    if (!file.read(from, bytes))
        return {"it cannot be read"};
    const bool hasMagic = asText(ByteView(bytes).last(magic.size())) == magic;
    const std::size_t summarySize = bytes.size() - footerSize - magic.size();
    ByteCursor footer(ByteView(bytes).subspan(summarySize));
    const auto op = footer.number<Op>();
    const auto size = footer.number<std::uint64_t>();
    const auto start = footer.number<std::uint64_t>();
    footer.number<std::uint64_t>();
    const auto sum = footer.number<std::uint32_t>();
    if (op != Op::Footer || size != footerSize - frameSize || asText(footer.rest()) != magic)
        return {"footer and magic are not where they belong", false, hasMagic};
    if (start == 0)
        return {summarySize == 0 ? "" : "its footer names no summary", false, hasMagic};
    const ByteView whole(bytes);
    if (start != from || (sum != 0 && checksum(whole.first(summarySize + footerSize - 4)) != sum))
        return {"its summary is torn", false, hasMagic};
    if (!names(whole.first(summarySize), chunks))
        return {"its summary does not name what is there", false, hasMagic};
    return {"", true, hasMagic};
}
} // namespace Monitor::Mcap
