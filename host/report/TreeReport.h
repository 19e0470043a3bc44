#pragma once

#include "scene/run/LoadedScene.h"
#include "trovio/Inspection.h"

#include <set>

namespace Host {

/// Says of a tree of namespaces which routes met nobody, or only ends that do not fit, and why.
void reportRoutes(const Trovio::NamespaceInfo& root, const Scenes::Say& say);

/// The paths of all ends of routes that are not connected there: "Context/Wand".
std::set<std::string> endsApart(const Trovio::NamespaceInfo& root);

/// Says which nodes there are and how they are.
void reportNodes(const Trovio::NamespaceInfo& root, const Scenes::Say& say);

/// Says what each node counted.
void reportCounters(const Trovio::NamespaceInfo& root, const Scenes::Say& say);

/// Says what nodes say of the newest values in their slots.
void reportRemarks(const Trovio::NamespaceInfo& root, const Scenes::Say& say);
} // namespace Host
