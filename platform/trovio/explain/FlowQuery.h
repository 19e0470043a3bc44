#pragma once

#include "trovio/explain/RecordFlow.h"

namespace Trovio {

/// Finds out whether records flow between two labels of a scope, and if not, why: first whether there are such slots,
/// then whether routes lead from one to the other, then, slot by slot on that way, where the records stop.
/// Threads: the tree lock is held for as long as this lives.
class FlowQuery {
public:
    /// A record is stale, and a reader is behind, after so many seconds.
    FlowQuery(const Scope& here, std::vector<VisibleSlots::Below> below, double staleAfter);

    /// Throws Exception for a bad pattern.
    Explanation explain(const std::string& from, const std::string& to) const;

private:
    Explanation explainPair(const std::string& from, const std::string& to) const;
    Explanation findCause(const std::string& from, const std::string& to) const;

    const VisibleSlots _slots;
    const RecordFlow _flow;
};

} // namespace Trovio
