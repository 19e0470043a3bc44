#pragma once

#include "sensorManager/SensorHandlerType.h"
#include "trovio/Root.h"

namespace Scenes {

/// The framework's root, open as long as this lives. Threads: the scene thread; one object per process at a time.
class OpenRoot {
public:
    OpenRoot()
    {
        Ostrel::initSensorManager();
        Trovio::Root::init();
    }
    ~OpenRoot() { Trovio::Root::shutdown(); }
    OpenRoot(const OpenRoot&) = delete;
    OpenRoot& operator=(const OpenRoot&) = delete;
};
} // namespace Scenes
