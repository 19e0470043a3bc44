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

void Scene::ask(Seat& seat)
{
    --_counts[seat._direction];
    seat._direction = !seat._sensor ? None : seat._sensor->isOutput() ? Out : In;
    ++_counts[seat._direction];
}

void Scene::askAll()
{
    for (Seat& seat : _seats)
        ask(seat);
    _turns = DirectSensor::turns();
}

DirectSensor& Scene::add(std::unique_ptr<DirectSensor> sensor)
{
    assert(sensor && !sensor->context());
    DirectSensor& added = *sensor;
    _seats.emplace_back();
    ++_counts[None];
    _places.emplace(&added, _seats.size() - 1);
    _seats.back()._sensor = std::move(sensor);
    ask(_seats.back());
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
    for (std::size_t place = 0; place != _seats.size(); ++place)
        if (_seats[place]._sensor)
            take(place);
}

std::unique_ptr<DirectSensor> Scene::take(std::size_t place)
{
    std::unique_ptr<DirectSensor> sensor = std::move(_seats[place]._sensor);
    ask(_seats[place]);
    _places.erase(sensor.get());
    closeGaps();
    sensor->setContext(nullptr);
    sensor->setParent(nullptr);
    return sensor;
}

/// Only where they are more than the sensors, so that each that goes pays as much as for one.
void Scene::closeGaps()
{
    if (_walks != 0 || _seats.size() <= 2 * _places.size())
        return;
    _counts[None] -= std::erase_if(_seats, [](const Seat& seat) { return !seat._sensor; });
    for (std::size_t place = 0; place != _seats.size(); ++place)
        _places.find(_seats[place]._sensor.get())->second = place;
}

std::vector<DirectSensor*> Scene::sensors() const
{
    std::vector<DirectSensor*> result;
    result.reserve(size());
    for (const Seat& seat : _seats)
        if (seat._sensor)
            result.push_back(seat._sensor.get());
    return result;
}

void Scene::frame(const TimeStamp& now)
{
    const Walk walk(*this);
    if (_turns != DirectSensor::turns())
        askAll();
    const std::uint64_t turns = _turns;
    const std::size_t seats = _seats.size();
    bool outputs = _counts[In] == 0;
    std::size_t next = 0;
    try {
        if (!outputs)
            service(outputs, next, now);
        // Most scenes have no outputs; but a sensor may have come or turned round meanwhile.
        if (_counts[Out] != 0 || seats != _seats.size() || turns != DirectSensor::turns()) {
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

void Scene::service(bool outputs, std::size_t& next, const TimeStamp& now)
{
    const Direction wanted = outputs ? Out : In;
    const std::size_t end = _seats.size(); // one that comes meanwhile stands behind it
    while (next != end) {
        const Seat& seat = _seats.data()[next++]; // in bounds: no seat goes while a walk lasts
        // A sensor may have turned round since the frame began.
        if (seat._direction != wanted && (_turns == DirectSensor::turns() || !seat._sensor))
            continue;
        DirectSensor* const sensor = seat._sensor.get();
        DirectSensorProc* const proc = sensor->getDirectSensorProc();
        if (sensor->isOutput() == outputs && proc)
            proc->getUpdateSubject().notify(now, sensor);
    }
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
    for (const Seat& seat : _seats) {
        DirectSensor* const sensor = seat._sensor.get();
        if (!sensor || !sensor->isMarked())
            continue;
        changed.push_back(sensor);
        sensor->clearMarks();
    }
    return changed;
}

} // namespace Ostrel
