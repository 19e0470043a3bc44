#pragma once

#include <cstddef>
#include <optional>

namespace Host {

struct TerminalSize {
    std::size_t _width, _height; // characters
};

/// The size of the terminal behind a descriptor as it is now: what it says itself, else COLUMNS and LINES, else 80 by
/// 24. Nothing where it is no terminal.
std::optional<TerminalSize> terminalSize(int descriptor);

/// Whether this is a terminal that can move its cursor: any but one that TERM calls "dumb".
bool hasCursor(int descriptor);

/// Whether the program is not in the background of the terminal behind a descriptor. Safe in a signal handler.
bool isInFront(int descriptor);
} // namespace Host
