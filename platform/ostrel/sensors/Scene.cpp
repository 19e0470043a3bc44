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

/// A walk over the sensors from the first to the one that was added last, while any of them may be taken away.
class Scene::Walk {
public:
    // Not inlined: the compiler would warn of the scene's pointer to a local object, which the destructor takes back.
    [[gnu::noinline]] Walk(Scene& scene, Sensors::iterator first)
        : _scene(scene), _outer(scene._walk), _next(first), _last(scene._number)
    {
        scene._walk = this;
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk()
    {
        _scene._walk = _outer;
        _scene._left = _next;
    }

    /// Null at the end.
    DirectSensor* next()
    {
        if (_next == _scene._sensors.end() || _next->first > _last)
            return nullptr;
        return (_next++)->second.get();
    }

    /// Tells this walk and the ones around it that a sensor is about to be taken away.
    void leave(Sensors::iterator place)
    {
        for (Walk* walk = this; walk; walk = walk->_outer)
            if (walk->_next == place)
                ++walk->_next;
    }

private:
    Scene& _scene;
    Walk* const _outer;
    Sensors::iterator _next;
    const std::uint64_t _last;
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
    const auto place = _sensors.emplace(++_number, std::move(sensor)).first;
    try {
        _numbers.emplace(&added, place->first);
        added.setParent(&_root);
        added.setContext(_context.get());
    } catch (...) {
        take(place);
        throw;
    }
    return added;
}

std::unique_ptr<DirectSensor> Scene::remove(DirectSensor& sensor)
{
    const auto number = _numbers.find(&sensor);
    return number == _numbers.end() ? nullptr : take(_sensors.find(number->second));
}

void Scene::clear()
{
    while (!_sensors.empty())
        take(_sensors.begin());
}

std::unique_ptr<DirectSensor> Scene::take(Sensors::iterator place)
{
    std::unique_ptr<DirectSensor> sensor = std::move(place->second);
    if (_walk)
        _walk->leave(place);
    _sensors.erase(place);
    _numbers.erase(sensor.get());
    sensor->setContext(nullptr);
    sensor->setParent(nullptr);
    return sensor;
}

std::vector<DirectSensor*> Scene::sensors() const
{
    std::vector<DirectSensor*> result;
    result.reserve(_sensors.size());
    for (const auto& [number, sensor] : _sensors)
        result.push_back(sensor.get());
    return result;
}

void Scene::frame(const TimeStamp& now)
{
    // Most scenes have no outputs. A second walk over all sensors would cost as much as the first, so it is left out
    // where the first one met no output and no sensor came or turned round meanwhile.
    const std::uint64_t number = _number;
    const std::uint64_t turns = DirectSensor::turns();
    bool outputs = false;
    try {
        if (service(outputs, _sensors.begin(), now) || number != _number || turns != DirectSensor::turns()) {
            outputs = true;
            service(outputs, _sensors.begin(), now);
        }
    } catch (const std::bad_alloc&) {
        serviceLeft(outputs, now);
    }
}

void Scene::serviceLeft(bool outputs, const TimeStamp& now)
{
    tellOfMemory();
    Sensors::iterator next = _left;
    for (;;) {
        try {
            service(outputs, next, now);
            if (outputs)
                return;
            outputs = true;
            next = _sensors.begin();
        } catch (const std::bad_alloc&) {
            next = _left;
        }
    }
}

bool Scene::service(bool outputs, Sensors::iterator first, const TimeStamp& now)
{
    bool others = false;
    Walk walk(*this, first);
    while (DirectSensor* const sensor = walk.next()) {
        DirectSensorProc* const proc = sensor->getDirectSensorProc();
        if (sensor->isOutput() != outputs)
            others = true;
        else if (proc)
            proc->getUpdateSubject().notify(now, sensor);
    }
    return others;
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
    for (const auto& [number, sensor] : _sensors) {
        if (!sensor->isMarked())
            continue;
        changed.push_back(sensor.get());
        sensor->clearMarks();
    }
    return changed;
}

} // namespace Ostrel
