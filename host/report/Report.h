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

/// Says what a person should know before the first frame: sensors that nothing reaches, routes that are not connected,
/// and the state of every node. Lines are broken at `width` columns.
void reportStart(const Scenes::Session& session, std::size_t width, const Scenes::Say& say);

/// Says what came of the run: values of each sensor with the counters of its slots, counters of each node, frames.
/// While the session still stands, its nodes stopped.
void reportEnd(const Scenes::Session& session, const RunTotals& totals, std::size_t width, const Scenes::Say& say);

/// Everything that was counted in a run as one JSON object on a line: {"counts":{"frames":…,"sensors":[…],"slots":[…],
/// "nodes":[…]}}. While the session still stands.
std::string countsLine(const Scenes::Session& session, const RunTotals& totals);
} // namespace Host
