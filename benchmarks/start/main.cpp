#include "benchmarks/harness/Workload.h"
#include "benchmarks/start/Registration.h"
#include "benchmarks/start/Routing.h"
#include <cmath>
#include <map>

namespace Bench {

namespace {

using Run = std::function<Sample(std::size_t objects)>;

/// What each step takes for each object, and how that grows from a tenth of the objects on. Where a search in a map is
/// all that grows, it grows for each object as the logarithm does, and for all as n log n.
void addSteps(Workload& workload, const std::vector<std::string>& steps, std::size_t count, const Run& inContainers,
              const Run& byLibrary)
{
    const std::size_t tenth = count / 10;
    std::vector<Metric> metrics;
    for (const std::string& step : steps)
        metrics.push_back({step, "ns"});
    for (const std::string& step : steps)
        metrics.push_back({step + " growth", "x"});
    workload.setMetrics(metrics);
    workload.add("containers", [=] { return withGrowth(tenth, count, inContainers); });
    workload.add("library", [=] { return withGrowth(tenth, count, byLibrary); });
    const double expected = std::log(static_cast<double>(count)) / std::log(static_cast<double>(tenth));
    for (std::size_t step = 0; step < steps.size(); ++step)
        workload.limitToFigure("library", "n log n's " + std::to_string(expected).substr(0, 4), expected,
                               steps.size() + step);
}

/// Each figure is for one sensor with its four handlers.
template <std::size_t Count>
void registration(Workload& workload)
{
    addSteps(workload, {"start", "leave", "come back", "shutdown"}, Count, registerInContainers, registerByLibrary);
}

/// Each figure is for one slot.
template <std::size_t Count>
void routing(Workload& workload)
{
    const auto slots = std::make_shared<std::map<std::size_t, RoutedSlots>>();
    for (const std::size_t count : {Count / 10, Count})
        slots->emplace(count, RoutedSlots(count));
    addSteps(
        workload, {"slots come", "routes go", "routes come", "slots go"}, Count,
        [slots](std::size_t count) { return slots->at(count).inContainers(); },
        [slots](std::size_t count) { return slots->at(count).byLibrary(); });
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
