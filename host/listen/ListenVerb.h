#pragma once

#include "host/Options.h"

namespace Host {

/// Shows what comes by OSC, and which settings of a node would take it; runs no scene. Blocks until the time is over, a
/// signal comes, or nobody reads any more.
int oscListenVerb(const Options& options);
} // namespace Host
