#pragma once

#include "tests/load/PoolViews.h"

#define PROBE_ENTRY extern "C" [[gnu::visibility("default")]]

/// The pools as the module sees them.
PROBE_ENTRY void probePools(std::vector<PoolView>& views);
/// Opens the framework, makes a handler and a node from another module, and takes all of it down. Null, or what failed.
PROBE_ENTRY const char* probeUse();
