#pragma once

#include "host/report/RunCounts.h"

namespace Host {

/// Says what a person should know before the first frame: sensors that nothing reaches, routes that are not connected,
/// and the state of every node. Lines are broken at `width` columns.
void reportStart(const Scenes::Session& session, std::size_t width, const Scenes::Say& say);

/// Says what came of the run: values of each sensor with the counters of its slots, counters of each node, frames.
/// While the session still stands, its nodes stopped.
void reportEnd(const Scenes::Session& session, const RunTotals& totals, std::size_t width, const Scenes::Say& say);
} // namespace Host
