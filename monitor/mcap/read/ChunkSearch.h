#pragma once

#include "monitor/mcap/read/InputFile.h"

#include <optional>

namespace Monitor::Mcap {

/// Finds the next good chunk behind a place that cannot be read. Only one whose checksum is there and right counts, so
/// what looks like a chunk by chance does not.
class ChunkSearch {
public:
    explicit ChunkSearch(InputFile& file) : _file(file), _budget(4 * file.size()) {}

    std::optional<std::uint64_t> next(std::uint64_t from);

private:
    bool isGood(std::uint64_t offset);

    InputFile& _file;
    std::uint64_t _budget; // bytes that may still be looked at: a file may be full of what begins like a chunk
    Bytes _window, _content, _unpacked;
};
} // namespace Monitor::Mcap
