#include "benchmarks/harness/Workload.h"
#include "benchmarks/road/Road.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"

namespace Bench {

namespace {

struct WaitingNode {
    const char* _type;
    const char* _settings; // so that it waits for what it waits for
};

constexpr WaitingNode nodes[] = {
    {"Scale", "type=Vec3f"},
    {"Guard", "type=Vec3f after=3600"},
    {"Generator", "rate=0.001"},
    {"OSC", "listen=127.0.0.1:0 in='/wand/position Vec3f' send=127.0.0.1:9 out='/rumble Float'"},
    {"Controller", ""},
    {"DDS", "publish='out Vec3f' subscribe='in Vec3f'"},
};

Sample startAndStop(const WaitingNode& row)
{
    Trovio::Namespace& root = Trovio::Root::get();
    auto node = Trovio::NodeType::newInstance(row._type);
    node->setFieldValues(row._settings);
    const auto start = Clock::now();
    const std::string label = root.addNamespace(std::move(node));
    const double started = nanosecondsSince(start);
    const auto stop = Clock::now();
    root.removeNamespace(label);
    return {{nanosecondsSince(stop), started}, {}};
}

/// What it takes to stop a node that waits: for records, for its time, for packets, for devices. All of them wait with
/// a way to be woken, so none is waited for.
void stop(Workload& workload)
{
    const auto root = std::make_shared<OpenRoot>();
    workload.setMetrics({{"", "ms", 1e-6}, {"start", "ms", 1e-6}});
    for (const WaitingNode& row : nodes)
        workload.add(row._type, [root, &row] { return startAndStop(row); });
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads({{"stop", Bench::stop}}, argc, argv);
}
