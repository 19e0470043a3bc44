#pragma once

#include "ostrel/Scene.h"
#include "scene/file/SceneFile.h"
#include "scene/run/SensorWatch.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Scenes {

/// The sensors of one scene, in a context of their own, with their links and who watches them.
/// Ownership: owns all of it. A slot that serves a sensor ends with the sensor at the latest.
/// Threads:   the scene thread only.
class LoadedSensors {
public:
    /// `title` names the scene in messages where several run, else it is empty.
    explicit LoadedSensors(std::string title) : _title(std::move(title)) {}

    Ostrel::Context& context() { return _scene.context(); }
    void frame(double now);

    /// Makes and registers the sensor with its initial value; handlers that are there make slots for it.
    SensorWatch& add(const SensorEntry& entry);
    void remove(const std::vector<std::string>& names);
    /// Removes all.
    void clear();

    /// Gives the field the value that the file says, and passes it on as a change at that time.
    void setValue(const SensorEntry& entry, double now);
    /// Does nothing where the two are linked.
    void link(const LocatedPair& link);
    void unlink(const LocatedPair& link);

    /// From then on the watches stand in the order of the file, which has the same sensors. False where they do.
    bool putInOrder(const std::vector<SensorEntry>& entries);

    const std::vector<std::unique_ptr<SensorWatch>>& watches() const { return _watches; }

private:
    SensorWatch& watchOf(const std::string& name) const { return *_byName.at(name); }
    Ostrel::Field& fieldAt(const std::string& end) const;

    const std::string _title;
    Ostrel::Scene _scene;
    std::vector<std::unique_ptr<SensorWatch>> _watches; // end before their sensors
    std::unordered_map<std::string, SensorWatch*> _byName;
};
} // namespace Scenes
