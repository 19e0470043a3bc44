#include "benchmarks/harness/Workload.h"
#include "benchmarks/road/Road.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Namespace.h"
#include "trovio/OutSlot.h"
#include <malloc.h>

namespace Bench {

namespace {

using Value = Trovio::Vec3<float>;
using In = Trovio::InSlot<Value>;
using Out = Trovio::OutSlot<Value>;

constexpr std::size_t count = 10'000;

double bytesInUse()
{
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// What one of `count` takes that the step makes, as the allocator keeps it.
template <class Step>
double bytesOf(Step step)
{
    const double before = bytesInUse();
    step();
    return (bytesInUse() - before) / static_cast<double>(count);
}

template <class T, class... Arguments>
double bytesOfEach(std::vector<std::unique_ptr<T>>& things, Arguments... arguments)
{
    things.reserve(count);
    return bytesOf([&] {
        for (std::size_t i = 0; i < count; ++i)
            things.push_back(std::make_unique<T>("", arguments...));
    });
}

std::string labelOf(const char* kind, std::size_t i)
{
    return kind + std::to_string(i);
}

/// Slots by themselves, their labels in a namespace, these as the root sees them, and connections by one route.
struct SlotBytes {
    double _slot, _ring, _label, _shownLabel, _connection;
};

SlotBytes slotBytes()
{
    SlotBytes bytes{};
    std::vector<std::unique_ptr<In>> ins;
    std::vector<std::unique_ptr<Trovio::BufferedInSlot<Value>>> rings;
    std::vector<std::unique_ptr<Out>> outs;
    bytes._slot = bytesOfEach(ins);
    bytes._ring = bytesOfEach(rings, 16U);
    bytesOfEach(outs);
    Trovio::Namespace& root = Trovio::Root::get();
    for (std::size_t i = 0; i < count; ++i)
        root.addOutSlot(labelOf("out", i), outs[i].get());
    const std::string place = root.addNamespace("Context", std::make_unique<Trovio::Namespace>());
    Trovio::Namespace& ns = *root.getNamespace(place);
    bytes._label = bytesOf([&] {
        for (std::size_t i = 0; i < count; ++i)
            ns.addInSlot(labelOf("sensor", i), ins[i].get());
    });
    bytes._shownLabel = bytesOf([&] { ns.addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}"); });
    bytes._connection = bytesOf([&] { root.addRoute("out*", place + "/sensor*"); });
    root.removeNamespace(place);
    for (std::size_t i = 0; i < count; ++i)
        root.removeSlot(labelOf("out", i));
    return bytes;
}

/// Sensors of a scene without a handler, and what a handler adds for each.
struct SensorBytes {
    double _sensor, _served;
};

SensorBytes sensorBytes()
{
    Ostrel::Scene scene;
    const double sensor = bytesOf([&scene] {
        for (std::size_t i = 0; i < count; ++i) {
            auto added = std::make_unique<Ostrel::DirectSensor>(std::make_unique<Ostrel::SFVec3f>());
            added->setLabel(labelOf("sensor", i));
            scene.add(std::move(added));
        }
    });
    Ostrel::SensorManager& manager = *Ostrel::SensorManager::requestManager(scene.context());
    const double served = bytesOf([&manager] { manager.addHandler("Trovio", "bench", Merid::URL("file:.")); });
    manager.delHandler("bench");
    return {sensor, served};
}

/// What a sensor takes, part by part.
void memory(Workload& workload)
{
    const auto root = std::make_shared<OpenRoot>();
    workload.setMetrics({{"sensor and field", "B"},
                         {"observer", "B"},
                         {"slot", "B"},
                         {"label", "B"},
                         {"label at the root", "B"},
                         {"all of a sensor", "B"},
                         {"connection", "B"},
                         {"slot with a ring of 16", "B"}});
    workload.add("library", [root]() -> Sample {
        const SlotBytes slot = slotBytes();
        const SensorBytes sensor = sensorBytes();
        const double observer = sensor._served - slot._slot - slot._label - slot._shownLabel;
        return {{sensor._sensor, observer, slot._slot, slot._label, slot._shownLabel, sensor._sensor + sensor._served,
                 slot._connection, slot._ring},
                {}};
    });
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads({{"memory", Bench::memory}}, argc, argv);
}
