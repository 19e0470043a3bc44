#pragma once

#include "trovio/Inspection.h"
#include "trovio/routing/Scope.h"

namespace Trovio {

/// Adds what a scope sees and which routes it has. Under the tree lock.
void inspectScope(const Scope& scope, NamespaceInfo& info);

/// The slots that it sees under the label, each with its activity. Under the tree lock.
std::vector<SlotInfo> inspectSlots(const Scope& scope, const std::string& label);

} // namespace Trovio
