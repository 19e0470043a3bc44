#pragma once

#include "monitor/mcap/read/InputFile.h"

#include <optional>

namespace Monitor::Mcap {

/// The last checkpoint that begins at `from` or behind it, looked for from the file's end on: there it is found at
/// once. Reads on as far as `from` where there is none, in pieces of 64 KiB.
class CheckpointSearch {
public:
    CheckpointSearch(InputFile& file, std::uint64_t from);

    const std::optional<Checkpoint>& last() const { return _last; }
    /// False where a part could not be read, so that there may be a later one.
    bool isWhole() const { return _isWhole; }

private:
    std::optional<Checkpoint> _last;
    bool _isWhole = true;
};

} // namespace Monitor::Mcap
