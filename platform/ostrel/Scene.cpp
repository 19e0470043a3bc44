#include "ostrel/Scene.h"

#include <cassert>
#include <utility>

namespace Ostrel {

namespace {

const NodeType& sceneType()
{
    static const auto* const type = new NodeType("Scene");
    return *type;
}

} // namespace

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
    service(false, now);
    service(true, now);
}

void Scene::service(bool outputs, const TimeStamp& now)
{
    // By number: servicing one sensor may remove any of them.
    const std::uint64_t last = _number;
    for (auto place = _sensors.begin(); place != _sensors.end() && place->first <= last;) {
        const std::uint64_t number = place->first;
        DirectSensor& sensor = *place->second;
        if (sensor.isOutput() == outputs && sensor.getDirectSensorProc())
            sensor.getDirectSensorProc()->getUpdateSubject().notify(now, &sensor);
        place = _sensors.upper_bound(number);
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
