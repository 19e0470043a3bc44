#pragma once

#include "benchmarks/road/Road.h"
#include "benchmarks/start/Steps.h"
#include "trovio/InSlot.h"
#include <map>
#include <set>
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

/// The same by hand, in the same containers: a set of sensors; for each handler a map from sensor to observer, which is
/// attached to the sensor's subject and owns a slot; the slot's label in the handler's namespace, and again, with the
/// namespace's label before it, in the root.
class Registry {
public:
    static Sample run(std::size_t count)
    {
        const SensorList sensors = makeSensors(count);
        Registry registry;
        const auto all = [&](auto step) {
            for (const auto& sensor : sensors)
                step(*sensor);
        };
        all([&](auto& sensor) { registry._sensors.insert(&sensor); });
        Steps steps(count);
        steps.time([&] {
            for (Handler& handler : registry._handlers)
                all([&](auto& sensor) { handler.add(sensor, registry._labels); });
        });
        steps.time([&] { all([&](auto& sensor) { registry.remove(sensor); }); });
        steps.time([&] { all([&](auto& sensor) { registry.add(sensor); }); });
        steps.time([&] {
            for (Handler& handler : registry._handlers)
                handler.clear(registry._labels);
        });
        return steps.sample();
    }

private:
    using Labels = std::unordered_map<std::string, Trovio::BasicInSlot*>;

    struct Observer final : Ostrel::Observer {
        explicit Observer(const Ostrel::DirectSensor& sensor)
            : Ostrel::Observer(nullptr),
              _label(sensor.getLabel()),
              _slot(std::make_unique<Trovio::InSlot<Trovio::Vec3<float>>>(sensor.getDescription()))
        {
        }
        void notify(const Ostrel::TimeStamp&, Ostrel::BaseObject*, Ostrel::BaseObject*, Ostrel::BaseObject*) override {}

        const std::string _label;
        const std::unique_ptr<Trovio::BasicInSlot> _slot;
    };

    struct Handler {
        std::map<Ostrel::DirectSensor*, std::unique_ptr<Observer>> _observers;
        Labels _labels;

        void add(Ostrel::DirectSensor& sensor, Labels& root)
        {
            auto observer = std::make_unique<Observer>(sensor);
            _labels.emplace(observer->_label, observer->_slot.get());
            root.emplace(shown(observer->_label), observer->_slot.get());
            sensor.getDirectSensorProc()->getUpdateSubject().attach(*observer);
            _observers.emplace(&sensor, std::move(observer));
        }
        void forget(const Observer& observer, Labels& root)
        {
            root.erase(shown(observer._label));
            _labels.erase(observer._label);
        }
        void remove(Ostrel::DirectSensor& sensor, Labels& root)
        {
            const auto found = _observers.find(&sensor);
            forget(*found->second, root);
            _observers.erase(found);
        }
        void clear(Labels& root)
        {
            for (auto& [sensor, observer] : _observers) {
                forget(*observer, root);
                observer.reset();
            }
            _observers.clear();
        }
        std::string shown(const std::string& label) const { return _label + "/" + label; }
        std::string _label;
    };

    Registry()
    {
        for (int i = 0; i < handlers; ++i)
            _handlers[i]._label = "Context" + std::to_string(i);
    }
    void add(Ostrel::DirectSensor& sensor)
    {
        _sensors.insert(&sensor);
        for (Handler& handler : _handlers)
            handler.add(sensor, _labels);
    }
    void remove(Ostrel::DirectSensor& sensor)
    {
        _sensors.erase(&sensor);
        for (Handler& handler : _handlers)
            handler.remove(sensor, _labels);
    }

    std::set<Ostrel::DirectSensor*> _sensors;
    Handler _handlers[handlers];
    Labels _labels; // as the root sees them
};

} // namespace Bench
