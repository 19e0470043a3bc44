#include "scene/run/Places.h"

#include "explain/TreeWalk.h"
#include "scene/change/HandlerLabels.h"
#include "scene/parts/NodeLabels.h"

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

Explain::ScenePlaces placesOf(const SceneFiles& files)
{
    Explain::ScenePlaces places;
    const auto labels = handlerLabels(files);
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::vector<PlacedHandler> handlers;
        for (std::size_t number = 0; number < labels[i].size(); ++number)
            handlers.push_back({&files[i]->_handlers[number], labels[i][number]});
        addPlaces(*files[i], handlers, places);
    }
    return places;
}
} // namespace Scenes
