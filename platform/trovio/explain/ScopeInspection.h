#pragma once

#include "trovio/Inspection.h"
#include "trovio/routing/Scope.h"

namespace Trovio {

/// Adds what a scope sees and which routes it has. Under the tree lock.
void inspectScope(const Scope& scope, NamespaceInfo& info);

} // namespace Trovio
