#pragma once

#include "explain/DotText.h"
#include "trovio/Inspection.h"

namespace Explain {

/// The name of a slot in the picture, as it stands in the text; the slot may be seen from the namespace with that path.
std::string dotName(const std::string& path, const Trovio::SlotInfo& slot);

/// Writes an arrow for each pair of slots that a route of the namespace leads between, and a box for each end that is
/// missing.
void writeDotRoutes(DotText& dot, const std::string& path, const Trovio::NamespaceInfo& info);
} // namespace Explain
