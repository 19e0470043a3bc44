#pragma once

#include "explain/Graph.h"
#include "scene/file/SceneFile.h"

#include <string>
#include <vector>

namespace Scenes {

class Session;

/// A handler and the path of its namespace, which is empty where its kind has none.
struct PlacedHandler {
    const HandlerEntry* _entry;
    std::string _path;
};

/// Adds what a scene file says about the tree in which its handlers stand so.
void addPlaces(const SceneFile& file, const std::vector<PlacedHandler>& handlers, Explain::ScenePlaces& places);

/// What the scenes that run say about the tree. Scene thread.
Explain::ScenePlaces placesOf(const Session& session);
} // namespace Scenes
