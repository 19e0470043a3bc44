#include "ostrel/Scene.h"

#include "osg/LogMessage.h"
#include "osg/LogRecord.h"
#include "ostrel/LogModuleName.h"
#include <cassert>
#include <new>
#include <utility>

namespace Ostrel {

namespace {

const NodeType& sceneType()
{
    static const auto* const type = new NodeType("Scene");
    return *type;
}

} // namespace

/// While one lives, every sensor keeps its place.
class Scene::Walk {
public:
    explicit Walk(Scene& scene) : _scene(scene) { ++_scene._walks; }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk()
    {
        --_scene._walks;
        _scene.closeGaps();
    }

private:
    Scene& _scene;
};

Scene::Scene() : _context(std::make_unique<Context>()), _root(sceneType())
{
    _root.setContext(_context.get());
}

Scene::~Scene()
{
    clear();
}

DirectSensor& Scene::add(std::unique_ptr<DirectSensor> sensor)
{
    assert(sensor && !sensor->context());
    DirectSensor& added = *sensor;
    _sensors.emplace_back();
    _places.emplace(&added, _sensors.size() - 1);
    _sensors.back() = std::move(sensor);
    try {
        added.setParent(&_root);
        added.setContext(_context.get());
    } catch (...) {
        remove(added);
        throw;
    }
    return added;
}

std::unique_ptr<DirectSensor> Scene::remove(DirectSensor& sensor)
{
    const auto place = _places.find(&sensor);
    return place == _places.end() ? nullptr : take(place->second);
}

void Scene::clear()
{
    const Walk walk(*this);
    for (std::size_t place = 0; place != _sensors.size(); ++place)
        if (_sensors[place])
            take(place);
}

std::unique_ptr<DirectSensor> Scene::take(std::size_t place)
{
    std::unique_ptr<DirectSensor> sensor = std::move(_sensors[place]);
    _places.erase(sensor.get());
    closeGaps();
    sensor->setContext(nullptr);
    sensor->setParent(nullptr);
    return sensor;
}

/// Only where they are more than the sensors, so that each that goes pays as much as for one.
void Scene::closeGaps()
{
    if (_walks != 0 || _sensors.size() <= 2 * _places.size())
        return;
    std::erase(_sensors, nullptr);
    for (std::size_t place = 0; place != _sensors.size(); ++place)
        _places.find(_sensors[place].get())->second = place;
}

std::vector<DirectSensor*> Scene::sensors() const
{
    std::vector<DirectSensor*> result;
    result.reserve(size());
    for (const auto& sensor : _sensors)
        if (sensor)
            result.push_back(sensor.get());
    return result;
}

void Scene::frame(const TimeStamp& now)
{
    // Most scenes have no outputs. A second walk over all sensors would cost as much as the first, so it is left out
    // where the first one met no output and no sensor came or turned round meanwhile.
    const Walk walk(*this);
    const std::uint64_t turns = DirectSensor::turns();
    bool outputs = false;
    std::size_t next = 0;
    try {
        if (service(outputs, next, now) || turns != DirectSensor::turns()) {
            outputs = true;
            next = 0;
            service(outputs, next, now);
        }
    } catch (const std::bad_alloc&) {
        serviceLeft(outputs, next, now);
    }
}

void Scene::serviceLeft(bool outputs, std::size_t next, const TimeStamp& now)
{
    tellOfMemory();
    for (;;) {
        try {
            service(outputs, next, now);
            if (outputs)
                return;
            outputs = true;
            next = 0;
        } catch (const std::bad_alloc&) {
            // Without that one.
        }
    }
}

bool Scene::service(bool outputs, std::size_t& next, const TimeStamp& now)
{
    bool others = false;
    const std::size_t end = _sensors.size(); // one that comes meanwhile stands behind it
    while (next != end) {
        DirectSensor* const sensor = _sensors[next++].get();
        if (!sensor)
            continue;
        DirectSensorProc* const proc = sensor->getDirectSensorProc();
        if (sensor->isOutput() != outputs)
            others = true;
        else if (proc)
            proc->getUpdateSubject().notify(now, sensor);
    }
    return others || _sensors.size() != end;
}

void Scene::tellOfMemory() noexcept
{
    if (_toldOfMemory)
        return;
    try {
        osg::logMessage(
            osg::LogWarning, {LogModuleName, "Ostrel/Scene", __LINE__, __PRETTY_FUNCTION__},
            "There was no memory for a value of a sensor. Frames go on with the other sensors; this is said "
            "once\n");
        _toldOfMemory = true;
    } catch (const std::bad_alloc&) {
        // Next time.
    }
}

std::vector<DirectSensor*> Scene::takeChanged()
{
    std::vector<DirectSensor*> changed;
    if (_root.marksBelow() == 0)
        return changed;
    for (const auto& sensor : _sensors) {
        if (!sensor || !sensor->isMarked())
            continue;
        changed.push_back(sensor.get());
        sensor->clearMarks();
    }
    return changed;
}

} // namespace Ostrel
