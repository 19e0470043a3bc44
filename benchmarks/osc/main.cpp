#include "benchmarks/osc/Age.h"
#include "benchmarks/osc/BareReceiver.h"
#include "benchmarks/osc/NodeReceiver.h"
#include "benchmarks/osc/Rate.h"

namespace Bench {

namespace {

template <template <class> class Measure>
void addBoth(Workload& workload)
{
    workload.add("bare socket, 1 MiB buffer",
                 [measure = std::make_shared<Measure<BareReceiver>>()] { return (*measure)(); });
    workload.add("library, 1 MiB buffer",
                 [measure = std::make_shared<Measure<NodeReceiver>>()] { return (*measure)(); });
}

/// More is better here.
void rate(Workload& workload)
{
    workload.setMetrics({{"", "k/s", 1e-3}});
    addBoth<Rate>(workload);
}

void age(Workload& workload)
{
    workload.setMetrics({{"", "us", 1e-3}, {"p99", "us", 1e-3}});
    addBoth<Age>(workload);
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads({{"W9.packets-until-loss", Bench::rate}, {"W9.age", Bench::age}}, argc, argv);
}
