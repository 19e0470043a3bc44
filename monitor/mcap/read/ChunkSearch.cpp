#include "monitor/mcap/read/ChunkSearch.h"

#include "monitor/mcap/format/ByteCursor.h"
#include "monitor/mcap/format/RecordParts.h"

#include <algorithm>

namespace Monitor::Mcap {

namespace {

constexpr std::uint64_t windowSize = 65'536;
constexpr std::size_t headSize = 8 + 8 + 8 + 4 + 4; // of a chunk's content, up to the name of its compression
} // namespace

std::optional<std::uint64_t> ChunkSearch::next(std::uint64_t from)
{
    while (from < _file.size() && _budget > 0) {
        _window.resize(static_cast<std::size_t>(std::min(windowSize, _file.size() - from)));
        _budget -= std::min<std::uint64_t>(_budget, _window.size());
        if (!_file.read(from, _window))
            return std::nullopt;
        constexpr auto chunk = static_cast<std::byte>(Op::Chunk);
        for (auto at = std::find(_window.begin(), _window.end(), chunk); at != _window.end();
             at = std::find(at + 1, _window.end(), chunk))
            if (const auto offset = from + static_cast<std::uint64_t>(at - _window.begin()); isGood(offset))
                return offset;
        from += _window.size();
    }
    return std::nullopt;
}

bool ChunkSearch::isGood(std::uint64_t offset)
{
    std::array<std::byte, frameSize + headSize> head;
    if (offset + head.size() > _file.size() || !_file.read(offset, head))
        return false;
    ByteCursor cursor(ByteView(head).subspan(1));
    const auto length = cursor.number<std::uint64_t>();
    const auto start = cursor.number<std::uint64_t>();
    const auto end = cursor.number<std::uint64_t>();
    cursor.number<std::uint64_t>();
    const auto sum = cursor.number<std::uint32_t>();
    const auto nameLength = cursor.number<std::uint32_t>();
    if (start > end || sum == 0 || nameLength > 4 || length < headSize + nameLength + 8 || length > maxRecord ||
        length > _file.size() - offset - frameSize || length > _budget)
        return false;
    _budget -= length;
    _content.resize(static_cast<std::size_t>(length));
    if (!_file.read(offset + frameSize, _content))
        return false;
    const auto chunk = parseChunk(_content);
    std::string problem;
    return chunk && chunkRecords(*chunk, _unpacked, problem);
}
} // namespace Monitor::Mcap
