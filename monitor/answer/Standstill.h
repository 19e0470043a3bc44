#pragma once

#include "monitor/answer/SlotMap.h"
#include "trovio/Explanation.h"

namespace Monitor {

/// Two slots between which nothing flows, though a route joins them or should; or, without the one or the other end, a
/// node that is degraded, or a sensor's slot that nothing is connected with.
struct Standstill {
    std::string _from, _to;
    Trovio::Explanation _cause;
    std::size_t _more = 0; // other pairs that stand still for the same cause
};

/// All of them in the tree, the worst first: what can never flow, then what a node lacks, what nobody writes, and what
/// is lost on the way. Of each cause the first pair is told. A record older than `staleAfter` seconds is stale.
/// Any thread; the tree is locked for each pair anew. Throws Trovio::Exception.
std::vector<Standstill> findStandstills(const SlotMap& map, double staleAfter);

} // namespace Monitor
