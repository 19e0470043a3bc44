#include "scene/run/Places.h"

#include "explain/TreeWalk.h"
#include "scene/run/NodeLabels.h"
#include "scene/run/Session.h"

namespace Scenes {

void addPlaces(const SceneFile& file, const std::vector<PlacedHandler>& handlers, Explain::ScenePlaces& places)
{
    const std::size_t scene = places._scenes.size();
    places._scenes.push_back(file._path);
    places._checksums.push_back(file._checksum);
    for (const auto& [entry, path] : handlers) {
        places._handlers.push_back({scene, entry->_name._value, entry->_kind._value, path});
        if (path.empty())
            continue;
        for (const SensorEntry& sensor : file._sensors)
            if (!sensor._label._value.empty())
                places._sensors[{path, sensor._label._value}] = {scene, sensor._name._value};
        for (const LabelledNode& node : labelledNodes(*entry))
            places._settings[Explain::pathBelow(path, node._label)] = node._entry->_second._value;
    }
    for (const LocatedPair& link : file._links)
        places._links.push_back({scene, link._first._value, link._second._value});
}

Explain::ScenePlaces placesOf(const Session& session)
{
    Explain::ScenePlaces places;
    for (const auto& scene : session.scenes()) {
        std::vector<PlacedHandler> handlers;
        for (const LoadedHandler& handler : scene->handlers())
            handlers.push_back({handler._entry, handler._namespace});
        addPlaces(scene->file(), handlers, places);
    }
    return places;
}
} // namespace Scenes
