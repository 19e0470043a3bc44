#include "benchmarks/harness/Workload.h"
#include "benchmarks/start/Registration.h"
#include "benchmarks/start/Routing.h"

namespace Bench {

namespace {

constexpr std::size_t runs(std::size_t objects)
{
    return std::max<std::size_t>(1, 15'000 / objects);
}

/// Each figure is for one sensor with its four handlers.
template <std::size_t Count>
void registration(Workload& workload)
{
    workload.setMetrics({{"start", "ns"}, {"leave", "ns"}, {"come back", "ns"}, {"shutdown", "ns"}});
    workload.add("by hand", [] { return medianOf(runs(Count), [] { return Registry::run(Count); }); });
    workload.add("library", [] { return medianOf(runs(Count), [] { return registerByLibrary(Count); }); });
    workload.limitEach("library", "by hand", 1.3);
}

/// Each figure is for one slot.
template <std::size_t Count>
void routing(Workload& workload)
{
    const auto slots = std::make_shared<RoutedSlots>(Count);
    workload.setMetrics({{"slots come", "ns"}, {"routes go", "ns"}, {"routes come", "ns"}, {"slots go", "ns"}});
    workload.add("by hand", [slots] { return medianOf(runs(Count), [&] { return slots->byHand(); }); });
    workload.add("library", [slots] { return medianOf(runs(Count), [&] { return slots->byLibrary(); }); });
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads({{"W8.1000", Bench::registration<1'000>},
                                {"W8.10000", Bench::registration<10'000>},
                                {"W8.100000", Bench::registration<100'000>},
                                {"W8.routes-1000", Bench::routing<1'000>},
                                {"W8.routes-10000", Bench::routing<10'000>}},
                               argc, argv);
}
