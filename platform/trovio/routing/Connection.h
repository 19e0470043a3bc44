#pragma once

#include "trovio/routing/Route.h"

// One out-slot and one in-slot that a route connects, and the joint that this makes in the graph of nodes.
namespace Trovio {

/// Names the joint of the two in the graph.
inline Relay::Key jointOf(const ResolvedRoute& route, const SlotView& to)
{
    return {route._serial, to._serial};
}

/// Whether both ends belong to nodes that pass on what comes into them.
inline bool joinsRelays(const SlotView& from, const SlotView& to)
{
    return from._ref._relay && to._ref._relay;
}

/// Connects two that fit. Returns nothing where they are connected now; where that would close a loop of nodes, it
/// changes nothing and says so. Without memory it throws and changes nothing.
std::string connect(const ResolvedRoute& route, const SlotView& to);

/// Disconnects two that connect() has connected. True if nothing else leads from the one node to the other.
bool disconnect(const ResolvedRoute& route, const SlotView& to) noexcept;

} // namespace Trovio
