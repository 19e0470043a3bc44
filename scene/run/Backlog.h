#pragma once

#include "scene/run/Session.h"
#include "trovio/BasicInSlot.h"

#include <string>
#include <unordered_map>

namespace Scenes {

/// How many records come to the sensors from one frame to the next, so that whoever loses some can be told the buffer
/// that would have held them.
/// Threads: the scene thread only.
class Backlog {
public:
    /// Right before a frame, which takes what has come.
    void update(const Session& session);

    /// "; buffer = 17 at sensor 'wave' would have held them" for the sensor with that label, alone or behind that of
    /// its handler's namespace; empty if it lost nothing.
    std::string cure(const Session& session, const std::string& label) const;

private:
    struct Seen {
        std::uint64_t _stored = 0;     // at the last update
        std::uint64_t _maxWaiting = 0; // between two
    };
    std::unordered_map<const Trovio::BasicInSlot*, Seen> _seen;
};
} // namespace Scenes
