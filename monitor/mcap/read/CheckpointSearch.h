#pragma once

#include "monitor/mcap/read/InputFile.h"

#include <optional>

namespace Monitor::Mcap {

/// The last checkpoint that begins at `from` or behind it, from the file's end on: there it is found at once. Reads on
/// as far as `from` where there is none.
std::optional<Checkpoint> lastCheckpoint(InputFile& file, std::uint64_t from);

} // namespace Monitor::Mcap
