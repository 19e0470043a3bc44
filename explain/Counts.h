#pragma once

#include "explain/Say.h"
#include "trovio/Inspection.h"

#include <nlohmann/json_fwd.hpp>

namespace Explain {

/// Says what became of the records in every slot that had any: as a table with a head line where `width` columns are
/// enough for it, else one slot after the other.
void reportSlots(const Trovio::NamespaceInfo& root, std::size_t width, const Say& say);

/// What was counted in a slot where it stands: {"written":…} or {"stored":…,…}, "lastStamp", "future", "backwards".
nlohmann::ordered_json countsJson(const Trovio::SlotInfo& slot);

/// What was counted in every slot, a list of {"slot":…,"direction":…,"type":…,…}.
nlohmann::ordered_json slotsJson(const Trovio::NamespaceInfo& root);

/// How every node is and what it counted, a list of {"node":…,"type":…,"state":…,"reason":…,"counts":{…}}.
nlohmann::ordered_json nodesJson(const Trovio::NamespaceInfo& root);
} // namespace Explain
