#pragma once

#include "benchmarks/road/Road.h"
#include "benchmarks/start/Steps.h"
#include <map>
#include <unordered_map>

namespace Bench {

using SensorList = std::vector<std::unique_ptr<Ostrel::DirectSensor>>;

inline SensorList makeSensors(std::size_t count)
{
    SensorList sensors;
    for (std::size_t i = 0; i < count; ++i) {
        auto& sensor =
            *sensors.emplace_back(std::make_unique<Ostrel::DirectSensor>(std::make_unique<Ostrel::SFVec3f>()));
        sensor.setLabel("sensor" + std::to_string(i));
    }
    return sensors;
}

/// Handlers come to a context that has sensors; the sensors leave and come back; the handlers go.
inline Sample registerByLibrary(std::size_t count)
{
    const OpenRoot root;
    Ostrel::Context context;
    const SensorList sensors = makeSensors(count);
    const auto setContext = [&](Ostrel::Context* to) {
        for (const auto& sensor : sensors)
            sensor->setContext(to);
    };
    setContext(&context);
    Ostrel::SensorManager& manager = *Ostrel::SensorManager::requestManager(context);
    Steps steps(count);
    steps.time([&] {
        for (int i = 0; i < handlers; ++i)
            manager.addHandler("Trovio", std::to_string(i), Merid::URL("file:."));
    });
    steps.time([&] { setContext(nullptr); });
    steps.time([&] { setContext(&context); });
    steps.time([&] {
        for (int i = 0; i < handlers; ++i)
            manager.delHandler(std::to_string(i));
    });
    setContext(nullptr);
    return steps.sample();
}

/// What no registration can do without: for each sensor an entry by its address in each handler, and its label in the
/// handler's namespace and, with the namespace's label before it, in the root. Nobody is told, and there are no slots.
inline Sample registerInContainers(std::size_t count)
{
    const SensorList sensors = makeSensors(count);
    std::map<const Ostrel::DirectSensor*, std::string> labels[handlers];
    std::unordered_map<std::string, const Ostrel::DirectSensor*> namespaces[handlers], root;
    const auto shown = [](int handler, const std::string& label) {
        return "Context" + std::to_string(handler) + "/" + label;
    };
    const auto add = [&](int handler, const Ostrel::DirectSensor& sensor) {
        const std::string& label = labels[handler].emplace(&sensor, sensor.getLabel()).first->second;
        namespaces[handler].emplace(label, &sensor);
        root.emplace(shown(handler, label), &sensor);
    };
    const auto remove = [&](int handler, const Ostrel::DirectSensor& sensor) {
        const auto found = labels[handler].find(&sensor);
        root.erase(shown(handler, found->second));
        namespaces[handler].erase(found->second);
        labels[handler].erase(found);
    };
    const auto byHandler = [&](auto step) {
        for (int handler = 0; handler < handlers; ++handler)
            for (const auto& sensor : sensors)
                step(handler, *sensor);
    };
    const auto bySensor = [&](auto step) {
        for (const auto& sensor : sensors)
            for (int handler = 0; handler < handlers; ++handler)
                step(handler, *sensor);
    };
    Steps steps(count);
    steps.time([&] { byHandler(add); });
    steps.time([&] { bySensor(remove); });
    steps.time([&] { bySensor(add); });
    steps.time([&] { byHandler(remove); });
    return steps.sample();
}

} // namespace Bench
