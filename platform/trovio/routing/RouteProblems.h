#pragma once

#include "trovio/routing/Route.h"

// Why a route joins nothing, in words.
namespace Trovio {

/// Whether the ends of a resolved route have the right directions and one type.
bool fits(const ResolvedRoute& route, const SlotView& to);

/// Why the two do not fit; empty where they do.
std::string mismatch(const ResolvedRoute& route, const SlotView& to);

/// That nothing stands under the label, or nothing matches the pattern.
std::string noSlot(const std::string& label);

/// That the slot is an in-slot where an out-slot is needed, or the other way round.
std::string wrongDirection(const RouteRule& route, const SlotView& end);

/// That the rule makes no valid label of this one.
std::string noLabel(const RouteRule& route, const std::string& label);

/// That records would come back into a node, by these joints.
std::string closesLoop(const RouteRule& route, const std::vector<Relay::Joint>& loop);

/// Writes each problem of a route to the log once. Labels may come from outside and without end, so it stops at 100
/// problems of one route; the inspection of the tree still tells of all.
void reportOnce(Route& route, const std::string& problem);

} // namespace Trovio
