#pragma once

#include <string>
#include <string_view>

namespace Host {

/// Standard output, written at once, and waiting for its reader. That nobody reads any more ends a
/// verb and is no failure, so it is no signal either, from the first object on. Threads: one.
class LineOutput {
public:
    LineOutput();

    /// Writes the line and its end. False where nobody reads any more.
    /// Throws AskError where it cannot be written, as on a full disk.
    bool put(const std::string& line) { return write(line + "\n"); }
    /// The same for text as it is.
    bool write(std::string_view text);

    /// Lets so many seconds pass; false at once where nobody reads any more.
    bool wait(double seconds);
};
} // namespace Host
