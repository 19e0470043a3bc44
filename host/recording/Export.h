#pragma once

#include "host/Options.h"

namespace Host {

/// Writes what a recording holds, as the caller asked for: to a file that must not exist yet, or to standard output.
/// Returns the exit code: Failed where the recording is damaged, too, and everything was exported that can be read.
/// Throws std::runtime_error where a file cannot be read or written.
int exportRecording(const Options& options);

} // namespace Host
