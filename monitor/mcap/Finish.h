#pragma once

#include "monitor/mcap/read/Reader.h"

#include <functional>

namespace Monitor::Mcap {

/// Gives a file that was cut off the end that it lacks, from what is there: what is torn behind the last good chunk
/// goes, summary, footer and checksum come. A whole file stays as it is. Returns what was found before; throws
/// std::runtime_error, and changes nothing, where the file is damaged, is none, or is just being written, and where the
/// disk fails.
FileState finishFile(const std::string& path, const std::function<bool(std::uint64_t, std::uint64_t)>& goOn);

} // namespace Monitor::Mcap
