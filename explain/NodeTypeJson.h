#pragma once

#include "trovio/NodeType.h"

namespace Explain {

/// A node type as one JSON object on a line: {"name":…,"description":…,"origin":…,"problem":…,"settings":[…]}.
/// `problem` is why it cannot be used, else null. Its settings, those of every node behind them, say `name`, `meaning`,
/// `kind`, `default` as it would be written, null where the setting must be given, and `allowed` in words; numbers also
/// `lowest` and `highest`, choices also `choices`.
std::string nodeTypeLine(const Trovio::NodeTypeInfo& type);
} // namespace Explain
