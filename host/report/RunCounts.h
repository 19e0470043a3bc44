#pragma once

#include "scene/run/Session.h"
#include "trovio/Inspection.h"

namespace Host {

/// What a run came to, as of one moment after its nodes have stopped, so that the numbers fit together.
struct RunTotals {
    Trovio::NamespaceInfo _root;
    double _now = 0; // wall-clock seconds
    std::uint64_t _frames = 0, _leftOut = 0;
};

/// Everything that was counted in a run as one JSON object on a line: {"counts":{"frames":…,"sensors":[…],"slots":[…],
/// "nodes":[…]}}. While the session still stands.
std::string countsLine(const Scenes::Session& session, const RunTotals& totals);
} // namespace Host
