#pragma once

#include "scene/SceneError.h"
#include <string>
#include <vector>

namespace Scenes {

/// Something to say about a scene file that could be read.
struct SceneFinding {
    std::string _file;               // its path
    unsigned _line = 0, _column = 0; // from 1; 0 for the file as a whole
    bool _isError = false;           // a handler or a node that cannot be made; else a note: what the file says is odd
    std::string _text;               // one line for people
};

/// Reads and checks scene files as `ostrel-host check` does, together, as they would run in one program. Nothing
/// starts, but each node is made once, which may load its module. Empty where all is well. The log may hear of what
/// cannot be made, too. Throws SceneError where a file cannot be read or is no good, or where the scenes cannot be
/// connected, and std::runtime_error where there is no memory for what they ask. Threads: the scene thread, while there
/// is no SceneRunner and Trovio's root is not open.
std::vector<SceneFinding> checkScenes(const std::vector<std::string>& paths);
} // namespace Scenes
