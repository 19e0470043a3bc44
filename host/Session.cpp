#include "host/Session.h"

#include "host/Failure.h"
#include "sensorManager/SensorHandlerType.h"
#include "trovio/Root.h"

namespace Host {

Session::Session()
{
    Ostrel::initSensorManager();
    Trovio::Root::init();
}

Session::~Session()
{
    tearDown();
}

// The one order of ending; every other one aborts somewhere: observers need their handlers, handlers need the root,
// and nodes run code of modules that the root closes.
void Session::tearDown()
{
    for (const auto& scene : _scenes)
        scene->unregisterSensors();
    for (const auto& scene : _scenes)
        scene->deleteHandlers();
    _scenes.clear();
    Trovio::Root::shutdown();
}

void Session::build(std::vector<SceneFile> files, const Say& say)
{
    const bool several = files.size() > 1;
    for (SceneFile& file : files) {
        const std::string title = several ? file._path : std::string();
        _scenes.push_back(std::make_unique<LoadedScene>(std::move(file), title));
        _scenes.back()->addSensors();
        _scenes.back()->addHandlers(say);
    }
    for (const auto& scene : _scenes)
        for (const LocatedPair& route : scene->file()._routes)
            Trovio::Root::get().addRoute(route._first._value, route._second._value);
    for (const auto& scene : _scenes)
        scene->addNodes(say);
}

void Session::frame(double now)
{
    for (const auto& scene : _scenes)
        scene->frame(now);
}

std::vector<SensorWatch*> Session::watches() const
{
    std::vector<SensorWatch*> all;
    for (const auto& scene : _scenes)
        for (SensorWatch& watch : scene->watches())
            all.push_back(&watch);
    return all;
}
} // namespace Host
