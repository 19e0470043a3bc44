#pragma once

#include "trovio/Inspection.h"

#include <set>
#include <string>

namespace Explain {

/// The paths of all ends of routes that are not connected there: "Context/Wand".
std::set<std::string> endsApart(const Trovio::NamespaceInfo& root);

/// Those, and the ends of all connections.
std::set<std::string> endsOfRoutes(const Trovio::NamespaceInfo& root);

/// The paths of all slots that have a connection.
std::set<std::string> connectedSlots(const Trovio::NamespaceInfo& root);
} // namespace Explain
