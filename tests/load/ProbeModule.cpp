// Stands for a node module: shows nothing but its entry points, and uses the library from inside.
#include "tests/load/ProbeModule.h"

#include "ostrel/Context.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorManager.h"
#include "tests/load/Mapped.h"
#include "trovio/InSlot.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/Root.h"

PROBE_ENTRY void probePools(std::vector<PoolView>& views)
{
    views = viewPools();
}

/// Lets the generator run until it has sent some.
static void takeRecordsOf(std::unique_ptr<Trovio::Node> node)
{
    Trovio::InSlot<float> in("in");
    auto& root = Trovio::Root::get();
    root.addInSlot("in", &in);
    root.addRoute("Generator/value", "in");
    const std::string label = root.addNamespace(std::move(node));
    for (int i = 0; i < 100; ++i)
        in.pop();
    const auto stopped = root.removeNamespace(label);
    root.removeSlot("in");
}

PROBE_ENTRY const char* probeUse()
{
    Trovio::Root::init();
    const char* failure = nullptr;
    {
        Ostrel::Context context;
        auto* const manager = Ostrel::SensorManager::requestManager(context);
        if (!manager->addHandler("Trovio", "probe", Merid::URL("file:.")))
            failure = "no handler";
        auto node = Trovio::NodeType::newInstance("Generator");
        if (!isMapped("trovio-node-Generator.so"))
            failure = "no module";
        node->setFieldValues("rate=10000");
        takeRecordsOf(std::move(node));
        manager->delHandler("probe");
    }
    Trovio::Root::shutdown();
    return failure;
}
