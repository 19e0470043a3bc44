#pragma once

#include "scene/file/SceneFile.h"

#include <set>
#include <string>

namespace Scenes {

/// The names of the sensors whose values come by a link.
std::set<std::string> linkTargets(const SceneFile& scene);

// What is to be said behind the name of a sensor that nothing reaches.

/// That no handler has a slot for its type.
std::string noSlotFor(const std::string& type);

/// That an input gets no values, or an output gives them to nobody, and why.
std::string unconnected(bool isOutput, const std::string& why);

/// Why it has no connection where no route names its label. Empty where it needs none, as it is one of `linked`.
std::string whyUnreached(const SensorEntry& sensor, const std::set<std::string>& linked);
} // namespace Scenes
