#include "benchmarks/peers/PeerChannels.h"
#include "benchmarks/peers/PeerStreams.h"
#include "benchmarks/threads/Channels.h"
#include "benchmarks/threads/RoundTrip.h"
#include "benchmarks/threads/Streams.h"

namespace Bench {

namespace {

void roundTrip(Workload& workload, int here, int there)
{
    workload.setMetrics({{"", "us", 1e-3}, {"p99", "us", 1e-3}});
    addRoundTrip<FutexChannel>(workload, "bare futex", here, there);
    addRoundTrip<FloorChannel>(workload, "floor", here, there);
    addRoundTrip<LibraryChannel>(workload, "library", here, there);
    addRoundTrip<SignalChannel>(workload, "Boost.Signals2, condition", here, there);
    addRoundTrip<ZmqChannel>(workload, "ZeroMQ inproc", here, there);
    addRoundTrip<MoodycamelOneToOneChannel>(workload, "moodycamel 1:1, spins", here, there);
    addRoundTrip<MoodycamelManyToManyChannel>(workload, "moodycamel n:n, spins", here, there);
    addRoundTrip<DdsChannel>(workload, "Cyclone DDS", here, there);
    workload.limit("library", "bare futex", 1.2);
    workload.forbidAllocations("library");
    for (const char* peer : {"Boost.Signals2, condition", "ZeroMQ inproc", "Cyclone DDS"})
        workload.limit("library", peer, 1.0);
}

void roundTripOnOneCore(Workload& workload)
{
    const int core = allowedCores().front();
    roundTrip(workload, core, core);
}

void roundTripOnTwoCores(Workload& workload)
{
    roundTrip(workload, allowedCores().front(), allowedCores().back());
}

void stream(Workload& workload)
{
    workload.setMetrics({{"", "ns"}, {"lost", "rec"}});
    addStream<FloorStream>(workload, "floor");
    addStream<LibraryStream>(workload, "library");
    addStream<ZmqStream>(workload, "ZeroMQ inproc");
    addStream<MoodycamelStream>(workload, "moodycamel 1:1, spins");
    addStream<LockfreeStream>(workload, "Boost.Lockfree 1:1, spins");
    workload.limit("library", "floor", 1.2);
    workload.forbidAllocations("library");
    workload.limit("library", "ZeroMQ inproc", 1.0);
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads({{"W3.one-core", Bench::roundTripOnOneCore},
                                {"W3.two-cores", Bench::roundTripOnTwoCores},
                                {"W4", Bench::stream}},
                               argc, argv);
}
