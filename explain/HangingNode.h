#pragma once

#include "trovio/NodeMove.h"

#include <optional>
#include <string>

namespace Explain {

/// "node 'Context/OSC' has not stopped for 3 s".
std::string described(const Trovio::NodeMove::Info& move);

/// Notices a node whose start, stop, settings or destructor takes long. Threads: one.
class HangingNode {
public:
    /// To be asked several times a second: says so once that has taken a second, and again every five; else empty.
    /// Throws std::bad_alloc.
    std::string news();

private:
    std::optional<Trovio::NodeMove::Info> _told; // the one that was looked at last
    double _next = 0;                            // seconds that it takes until it is named
};
} // namespace Explain
