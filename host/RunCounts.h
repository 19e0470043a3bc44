#pragma once

#include "host/FrameLoop.h"
#include "host/Session.h"
#include "trovio/Inspection.h"

namespace Host {

/// Says as a table, with a head line, what became of the records in every slot that had any.
void reportSlots(const Trovio::NamespaceInfo& root, const Say& say);

/// Everything that was counted in a run as one JSON object on a line: {"counts":{"frames":…,"sensors":[…],"slots":[…],
/// "nodes":[…]}}. While the session still stands.
std::string countsLine(const Session& session, const FrameLoop& loop);
} // namespace Host
