#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace Trovio {

class Node;

/// That a node takes its settings, starts, stops or is destroyed at this moment: module code that may take its time, or
/// never come back.
/// Threads: any may ask; each move belongs to the thread that makes it.
class NodeMove {
public:
    enum class Kind { Starts, Stops, IsConfigured, IsDestroyed };
    using Clock = std::chrono::steady_clock;

    struct Info {
        std::string _label; // from the root down, as in "Context/OSC", as far as it stands there; empty
                            // where there was no memory for it
        Kind _kind;
        Clock::time_point _since;
    };

    /// The longest of those that are going on, so that a watcher can name what holds the program up. Throws
    /// std::bad_alloc.
    static std::optional<Info> longest();

    NodeMove(const std::string& label, Kind kind) noexcept;
    ~NodeMove();
    NodeMove(const NodeMove&) = delete;
    NodeMove& operator=(const NodeMove&) = delete;

private:
    Info _info;
    NodeMove* _next = nullptr; // the one that began before
};

} // namespace Trovio
