#pragma once

#include "scene/run/Session.h"
#include "trovio/Explanation.h"

namespace Scenes {

/// The labels that an answer is about, as they were asked.
struct Asked {
    const std::string &_from, &_to;
};

/// The same answer in the words of the scene file, where that knows more than the slots do: that a node or handler
/// could not be made, that a label is a sensor's name, that the key `output` is wrong.
Trovio::Explanation inSceneWords(Trovio::Explanation found, const Session& session, const Asked& asked);

/// The line that a scene file lacks, for an answer that knows between which labels a route would help; else empty.
std::string missingRoute(const Trovio::Explanation& explanation, const Session& session);

/// Whether the label is that of a sensor, alone or with that of a handler's namespace before it.
bool isSensor(const Session& session, const std::string& label);
} // namespace Scenes
