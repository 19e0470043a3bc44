#pragma once

#include "scene/check/SceneGraph.h"

namespace Host {

/// The graph for people: a block for each handler, with its sensors, nodes, slots and routes.
std::string graphText(const Scenes::SceneGraph& graph);

/// The graph as one JSON object, several lines long.
std::string graphJson(const Scenes::SceneGraph& graph);

/// The graph for graphviz: a box for each handler and node, an arrow for each pair of slots that a route leads between,
/// red where it does not connect.
std::string graphDot(const Scenes::SceneGraph& graph);

inline const char* directionOf(const Trovio::SlotInfo& slot)
{
    return slot._direction == Trovio::Slot::Direction::Out ? "out" : "in";
}
} // namespace Host
