#pragma once

#include "benchmarks/dds/Exchange.h"
#include <memory>

// The exchange from slot to slot, through a DDS node in each process.
namespace Bench {

std::unique_ptr<NearEnd> makeNearNode(const Meeting& meeting);
std::unique_ptr<FarEnd> makeFarNode(const Meeting& meeting);

} // namespace Bench
