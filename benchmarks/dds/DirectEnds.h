#pragma once

#include "benchmarks/dds/Exchange.h"
#include <memory>

// The exchange written against the DDS library: the same types, qualities and configuration, and nothing between.
namespace Bench {

/// How samples are taken: by a listener, on the thread that receives, or by a thread that waits for them.
enum class Taking { Listener, Waitset };

std::unique_ptr<NearEnd> makeNearDirect(const Meeting& meeting, Taking taking);
std::unique_ptr<FarEnd> makeFarDirect(const Meeting& meeting, Taking taking);

} // namespace Bench
