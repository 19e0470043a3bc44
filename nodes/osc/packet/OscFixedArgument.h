#pragma once

#include "nodes/osc/address/OscEntry.h"
#include "nodes/osc/packet/OscArguments.h"
#include "nodes/osc/packet/OscWriter.h"

// An argument whose value an entry fixes.
namespace Trovio::Nodes {

/// Whether a message has that value there: numbers of any kind are compared as numbers, texts of either kind as texts.
bool isFixedOscValue(const OscFixedItem& fixed, const OscArgument& argument);

void writeFixedOscValue(OscWriter& writer, const OscFixedItem& fixed);

} // namespace Trovio::Nodes
