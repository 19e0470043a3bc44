#include "monitor/mcap/read/CheckpointSearch.h"

#include "monitor/mcap/format/RecordParts.h"

#include <algorithm>

namespace Monitor::Mcap {

namespace {

constexpr std::uint64_t windowSize = 65'536;

std::optional<Checkpoint> checkpointAt(std::uint64_t offset, ByteView bytes)
{
    const auto record = takeRecord(bytes);
    if (!record || record->_op != Op::Checkpoint)
        return std::nullopt;
    const auto checkpoint = parseCheckpoint(record->_content);
    return checkpoint && checkpoint->_offset == offset ? checkpoint : std::nullopt;
}

std::optional<Checkpoint> lastIn(std::uint64_t offset, ByteView window)
{
    for (std::size_t at = window.size() - checkpointSize + 1; at-- > 0;)
        if (window[at] == static_cast<std::byte>(Op::Checkpoint))
            if (const auto found = checkpointAt(offset + at, window.subspan(at, checkpointSize)))
                return found;
    return std::nullopt;
}
} // namespace

CheckpointSearch::CheckpointSearch(InputFile& file, std::uint64_t from)
{
    Bytes window;
    for (std::uint64_t end = file.size(); !_last && end >= from + checkpointSize;) {
        const std::uint64_t begin = std::max(from, end - std::min(end, windowSize));
        window.resize(static_cast<std::size_t>(end - begin));
        if (file.read(begin, window))
            _last = lastIn(begin, window);
        else
            _isWhole = false;
        end = begin + checkpointSize - 1; // one may lie across
    }
}
} // namespace Monitor::Mcap
