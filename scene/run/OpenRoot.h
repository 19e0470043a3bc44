#pragma once

#include "sensorManager/SensorHandlerType.h"
#include "trovio/Root.h"
#include <stdexcept>

namespace Scenes {

/// The framework's root, open as long as this lives. Threads: the scene thread; one object per process at a time.
class OpenRoot {
public:
    OpenRoot() { open(); }
    ~OpenRoot() { Trovio::Root::shutdown(); }
    OpenRoot(const OpenRoot&) = delete;
    OpenRoot& operator=(const OpenRoot&) = delete;

    /// For who shuts it himself. Throws std::logic_error where it is open: two owners would shut it under each other.
    static void open()
    {
        if (Trovio::Root::initialized_)
            throw std::logic_error("the framework's root is open already: end the scene that runs in this program, or "
                                   "call Trovio::Root::shutdown(), before another one is made or checked");
        Ostrel::initSensorManager();
        Trovio::Root::init();
    }
};
} // namespace Scenes
