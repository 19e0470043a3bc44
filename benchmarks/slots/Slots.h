#pragma once

#include "benchmarks/harness/Workload.h"

namespace Bench {

void pushAndTakeOne(Workload& workload);
void pushToMany(Workload& workload);
void pushToManyAndTake(Workload& workload);
void pushArrayToMany(Workload& workload);
void frameOfSlots(Workload& workload);

} // namespace Bench
