#pragma once

#include "scene/change/Difference.h"

namespace Scenes {

/// The labels of the handlers' namespaces in the root, by scene and handler; empty where a kind has none. They follow
/// from the places in the files alone: a handler that cannot be made keeps its label taken.
std::vector<std::vector<std::string>> handlerLabels(const SceneFiles& files);
} // namespace Scenes
