#pragma once

#include "trovio/Inspection.h"
#include "trovio/routing/Scope.h"

namespace Trovio {

/// Adds what a scope sees and which routes it has. Under the tree lock.
void inspectScope(const Scope& scope, NamespaceInfo& info);

/// The slots that it sees under the label, each with its activity. Under the tree lock.
std::vector<SlotInfo> inspectSlots(const Scope& scope, const std::string& label);

/// Without what it knows of its slots.
NodeInfo inspectNode(const Node& node, bool isRelaying);

/// Adds the slots that it sees under the label, with what passed them, but without looking at connections. Under the
/// tree lock.
void addSeen(const Scope& scope, const std::string& label, std::vector<SlotInfo>& slots);

/// Adds the same of those that stand in the scope with that path and that `top` does not see. Under the tree lock.
void addUnseen(const Scope& scope, const std::string& path, const Scope& top, std::vector<SlotInfo>& slots);

} // namespace Trovio
