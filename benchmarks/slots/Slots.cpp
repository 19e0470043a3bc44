#include "benchmarks/slots/Slots.h"
#include "benchmarks/floor/FloorFan.h"
#include "benchmarks/peers/DdsFan.h"
#include "benchmarks/peers/QueueFan.h"
#include "benchmarks/peers/SignalFan.h"
#include "benchmarks/peers/ZmqFan.h"
#include "benchmarks/slots/LibraryFan.h"

namespace Bench {

namespace {

constexpr std::size_t manyReaders = 16;

void addQueues(Workload& workload, std::size_t readers, std::size_t perBatch)
{
    addPushAndTake<QueueFan<MoodycamelOneToOne>>(workload, "moodycamel 1:1", readers, perBatch);
    addPushAndTake<QueueFan<MoodycamelManyToMany>>(workload, "moodycamel n:n", readers, perBatch);
    addPushAndTake<QueueFan<LockfreeOneToOne>>(workload, "Boost.Lockfree 1:1", readers, perBatch);
    addPushAndTake<QueueFan<LockfreeManyToMany>>(workload, "Boost.Lockfree n:n", readers, perBatch);
}

} // namespace

void pushAndTakeOne(Workload& workload)
{
    addPushAndTake<FloorFan>(workload, "floor", 1, 4'000);
    addPushAndTake<LibraryFan>(workload, "library", 1, 4'000);
    addPushAndTake<SignalFan>(workload, "Boost.Signals2", 1, 2'000);
    addPushAndTake<ZmqFan>(workload, "ZeroMQ inproc", 1, 2'000);
    addPushAndTake<DdsFan>(workload, "Cyclone DDS", 1, 500);
    addQueues(workload, 1, 4'000);
    workload.limit("library", "floor", 1.15);
    workload.forbidAllocations("library");
    workload.limit("library", "Boost.Signals2", 0.5);
}

void pushToMany(Workload& workload)
{
    addPush<FloorFan>(workload, "floor", manyReaders, 1'000);
    addPush<LibraryFan>(workload, "library", manyReaders, 1'000);
    addPush<SignalFan>(workload, "Boost.Signals2", manyReaders, 400);
    addPush<ZmqFan>(workload, "ZeroMQ inproc", manyReaders, 200);
    addPush<DdsFan>(workload, "Cyclone DDS", manyReaders, 100);
    workload.limit("library", "floor", 1.15);
    workload.forbidAllocations("library");
    workload.limit("library", "Boost.Signals2", 1.0 / 3);
}

void pushToManyAndTake(Workload& workload)
{
    addPushAndTake<FloorFan>(workload, "floor", manyReaders, 500);
    addPushAndTake<LibraryFan>(workload, "library", manyReaders, 500);
    addPushAndTake<SignalFan>(workload, "Boost.Signals2", manyReaders, 400);
    addPushAndTake<ZmqFan>(workload, "ZeroMQ inproc", manyReaders, 100);
    addPushAndTake<DdsFan>(workload, "Cyclone DDS", manyReaders, 50);
    addQueues(workload, manyReaders, 500);
    workload.limit("library", "floor", 1.15);
    workload.forbidAllocations("library");
    workload.limit("library", "Boost.Signals2", 1.0 / 3);
}

} // namespace Bench
