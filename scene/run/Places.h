#pragma once

#include "explain/Graph.h"
#include "scene/change/Difference.h"
#include "scene/file/SceneFile.h"

#include <string>
#include <vector>

namespace Scenes {

/// A handler and the path of its namespace, which is empty where its kind has none.
struct PlacedHandler {
    const HandlerEntry* _entry;
    std::string _path;
};

/// Adds what a scene file says about the tree in which its handlers stand so.
void addPlaces(const SceneFile& file, const std::vector<PlacedHandler>& handlers, Explain::ScenePlaces& places);

/// What the files say about the tree in which they run, together. Any thread.
Explain::ScenePlaces placesOf(const SceneFiles& files);
} // namespace Scenes
