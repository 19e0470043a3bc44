#include "scene/run/LoadedSensors.h"

#include "ostrel/FieldClass.h"
#include "scene/file/InitialValue.h"

#include <algorithm>
#include <unordered_set>

namespace Scenes {
namespace {

constexpr std::string_view fieldSuffix = ".value";
}

SensorWatch& LoadedSensors::add(const SensorEntry& entry)
{
    auto field = Ostrel::FieldClass::find(std::string_view(entry._type._value))->create();
    if (entry._value)
        setInitialValue(*field, *entry._value);
    auto sensor = std::make_unique<Ostrel::DirectSensor>(std::move(field));
    sensor->setName(entry._name._value);
    sensor->setLabel(entry._label._value);
    sensor->setDescription(entry._description._value);
    sensor->setBufferSize(entry._buffer._value);
    sensor->setOutput(entry._output._value);
    _watches.push_back(std::make_unique<SensorWatch>(_scene.add(std::move(sensor)), _title));
    _byName.emplace(entry._name._value, _watches.back().get());
    return *_watches.back();
}

void LoadedSensors::remove(const std::vector<std::string>& names)
{
    std::unordered_set<const SensorWatch*> watches;
    std::vector<Ostrel::DirectSensor*> sensors;
    for (const std::string& name : names) {
        const auto found = _byName.find(name);
        watches.insert(found->second);
        sensors.push_back(const_cast<Ostrel::DirectSensor*>(&found->second->sensor())); // one of this scene
        _byName.erase(found);
    }
    std::erase_if(_watches, [&watches](const auto& watch) { return watches.contains(watch.get()); });
    for (Ostrel::DirectSensor* const sensor : sensors)
        _scene.remove(*sensor);
}

void LoadedSensors::clear()
{
    _byName.clear();
    _watches.clear();
    _scene.clear();
}

void LoadedSensors::setValue(const SensorEntry& entry, double now)
{
    Ostrel::Field& field = watchOf(entry._name._value).field();
    setInitialValue(field, *entry._value);
    field.processValueChange(now, Ostrel::CallerOutside);
}

Ostrel::Field& LoadedSensors::fieldAt(const std::string& end) const
{
    return watchOf(end.substr(0, end.size() - fieldSuffix.size())).field();
}

void LoadedSensors::link(const LocatedPair& link)
{
    Ostrel::Field &from = fieldAt(link._first._value), &to = fieldAt(link._second._value);
    if (!from.isLinkedTo(to))
        from.linkTo(to);
}

void LoadedSensors::unlink(const LocatedPair& link)
{
    fieldAt(link._first._value).unlinkFrom(fieldAt(link._second._value));
}

bool LoadedSensors::putInOrder(const std::vector<SensorEntry>& entries)
{
    const auto stands = [](const std::unique_ptr<SensorWatch>& watch, const SensorEntry& entry) {
        return watch->sensor().getName() == entry._name._value;
    };
    if (std::ranges::equal(_watches, entries, stands))
        return false;
    std::unordered_map<std::string_view, std::size_t> places;
    for (std::size_t i = 0; i < entries.size(); ++i)
        places.emplace(entries[i]._name._value, i);
    std::ranges::sort(_watches, {}, [&places](const std::unique_ptr<SensorWatch>& watch) {
        return places.at(watch->sensor().getName());
    });
    return true;
}

void LoadedSensors::frame(double now)
{
    _scene.frame(now);
    _scene.takeChanged(); // ends the round, so that the next change marks its sensor anew
}
} // namespace Scenes
