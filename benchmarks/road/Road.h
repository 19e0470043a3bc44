#pragma once

#include "merid/URL.h"
#include "osg/Log.h"
#include "ostrel/FieldTypes.h"
#include "ostrel/Scene.h"
#include "sensorManager/SensorManager.h"
#include "sensorManager/TrovioSensorHandler.h"
#include "trovio/Root.h"
#include <memory>
#include <string>

namespace Bench {

/// The framework while it is open, without its messages of every step.
class OpenRoot {
public:
    OpenRoot()
    {
        osg::osgLogP->setInfoShown(false);
        Trovio::Root::init();
    }
    OpenRoot(const OpenRoot&) = delete;
    OpenRoot& operator=(const OpenRoot&) = delete;
    ~OpenRoot() { Trovio::Root::shutdown(); }
};

/// A scene with one handler. The root is open before it and closed after it.
class Road {
public:
    Road()
        : _handler(
              static_cast<Ostrel::TrovioSensorHandler*>(manager().addHandler("Trovio", "bench", Merid::URL("file:."))))
    {
    }
    Road(const Road&) = delete;
    Road& operator=(const Road&) = delete;
    ~Road()
    {
        _scene.clear();
        manager().delHandler(_handler);
    }

    template <class FieldT>
    Ostrel::DirectSensor& add(bool output)
    {
        auto sensor = std::make_unique<Ostrel::DirectSensor>(std::make_unique<FieldT>());
        sensor->setLabel("sensor" + std::to_string(_scene.size()));
        sensor->setOutput(output);
        return _scene.add(std::move(sensor));
    }

    Ostrel::Scene& scene() { return _scene; }
    template <class SlotT>
    SlotT& slot(Ostrel::DirectSensor& sensor)
    {
        return dynamic_cast<SlotT&>(*_handler->getSlot(&sensor));
    }

private:
    Ostrel::SensorManager& manager() { return *Ostrel::SensorManager::requestManager(_scene.context()); }

    Ostrel::Scene _scene;
    Ostrel::TrovioSensorHandler* const _handler;
};

} // namespace Bench
