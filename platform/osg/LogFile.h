#pragma once

#include <string>

namespace osg {

/// Opens a file for appending, and makes it if need be. Waits for nobody: a pipe without a reader is refused, and a
/// write into one whose reader has stopped fails with EAGAIN once it is full. -1 with the reason in `problem` where
/// that cannot be. The caller closes the descriptor.
int openLogFile(const std::string& path, std::string& problem);

} // namespace osg
