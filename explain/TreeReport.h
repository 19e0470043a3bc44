#pragma once

#include "explain/Say.h"
#include "trovio/Inspection.h"

namespace Explain {

/// Says of a tree of namespaces which routes are not connected, and why.
void reportRoutes(const Trovio::NamespaceInfo& root, const Say& say);

/// Says which nodes there are and how they are.
void reportNodes(const Trovio::NamespaceInfo& root, const Say& say);

/// Says what each node counted.
void reportCounters(const Trovio::NamespaceInfo& root, const Say& say);

/// Says what nodes say of the newest values in their slots.
void reportRemarks(const Trovio::NamespaceInfo& root, const Say& say);
} // namespace Explain
