#pragma once

#include "host/LoadedScene.h"
#include "trovio/Inspection.h"

namespace Host {

/// Says of a tree of namespaces which routes met nobody, or only ends that do not fit, and why.
void reportRoutes(const Trovio::NamespaceInfo& root, const Say& say);

/// Says which nodes there are and how they are.
void reportNodes(const Trovio::NamespaceInfo& root, const Say& say);

/// Says what each node counted.
void reportCounters(const Trovio::NamespaceInfo& root, const Say& say);
} // namespace Host
