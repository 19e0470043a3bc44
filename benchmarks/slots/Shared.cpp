#include "benchmarks/floor/FloorFan.h"
#include "benchmarks/peers/SharedPeers.h"
#include "benchmarks/slots/LibraryFan.h"
#include "benchmarks/slots/SharedFans.h"
#include "benchmarks/slots/Slots.h"
#include <cstring>

namespace Bench {

namespace {

constexpr std::size_t readers = 16;
constexpr std::size_t megabyte = 1'000'000 / sizeof(float);

template <class F>
void addShared(Workload& workload, const char* name, std::size_t size, std::size_t perBatch)
{
    workload.add(name, [perBatch, fan = std::make_shared<F>(readers, size)] {
        return sampleBatches(perBatch, [&] { fan->push(); });
    });
}

void addMemcpy(Workload& workload)
{
    const std::vector<float> from(megabyte, 1.0F);
    workload.add("one memcpy of the array", [from, to = std::vector<float>(megabyte)]() mutable {
        return sampleBatches(8, [&] {
            std::memcpy(to.data(), from.data(), megabyte * sizeof(float));
            keep(to[0]);
        });
    });
}

} // namespace

void pushArrayToMany(Workload& workload)
{
    addShared<FloorSharedFan>(workload, "floor", megabyte, 500);
    addShared<LibrarySharedFan>(workload, "library", megabyte, 500);
    addShared<LibrarySharedFan>(workload, "library, one float", 1, 500);
    addPush<LibraryFan>(workload, "library, W2.push", readers, 500);
    addPush<FloorFan>(workload, "floor, W2.push", readers, 500);
    addShared<SignalSharedFan>(workload, "Boost.Signals2, shared_ptr", megabyte, 400);
    addShared<ZmqSharedFan>(workload, "ZeroMQ inproc", megabyte, 100);
    addShared<DdsSharedFan>(workload, "Cyclone DDS", megabyte, 2);
    addMemcpy(workload);
    for (const char* contender : {"library", "library, one float", "library, W2.push"})
        workload.forbidAllocations(contender);
    workload.limit("library", "floor", 1.15);
    workload.limit("library", "library, one float", 1.10);
    workload.limit("library", "library, W2.push", 1.10);
    workload.limit("library", "Boost.Signals2, shared_ptr", 0.5);
}

} // namespace Bench
