// Stands for a node module: shows nothing but its entry points, and uses the library from inside.
#include "tests/load/ProbeModule.h"

#include "ostrel/Context.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorManager.h"
#include "tests/load/Mapped.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"

PROBE_ENTRY void probePools(std::vector<PoolView>& views)
{
    views = viewPools();
}

PROBE_ENTRY Trovio::BasicOutSlot* probeOutSlot()
{
    return new Trovio::OutSlot<Trovio::SharedVector<float>>("probe");
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
        const auto node = Trovio::NodeType::newInstance("Generator");
        if (!isMapped("trovio-node-Generator.so"))
            failure = "no module";
        manager->delHandler("probe");
    }
    Trovio::Root::shutdown();
    return failure;
}
