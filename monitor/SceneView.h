#pragma once

#include "explain/Graph.h"
#include "monitor/SceneChanges.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Monitor {

class Recorder;

/// Frames of the scene thread so far.
struct FrameCounts {
    std::uint64_t _run = 0;
    std::uint64_t _leftOut = 0;
    double _rate = 0; // a second, as asked for; 0 for a program without frames
};

/// What a sensor's field has gone through; for the live table of another process, with /sensors as "changes" and "age".
struct ChangeCounts {
    std::uint64_t _changes = 0;
    double _age = -1; // seconds since the last, as the table of a run shows it; negative before the first: null in JSON
};

/// What the program knows beyond the tree of namespaces; each may be empty.
/// Threads: the functions are called on threads of the server, several at a time.
struct SceneView {
    std::function<Explain::ScenePlaces()> _places; // handlers, sensors and links of scene files
    /// The value of a sensor's field as JSON, by the sensor's name, with "scene: " before it where several run; "null"
    /// where there is none. May wait for the end of a frame.
    std::function<std::string(const std::string& sensor)> _fieldJson;
    std::function<ChangeCounts(const std::string& sensor)> _changes; // by the same name
    std::function<FrameCounts()> _frames;
    std::string _name;                     // of the program and its scenes, for people
    Recorder* _recorder = nullptr;         // what /recording starts and ends; outlives the server
    std::vector<std::string> _addresses{}; // where browsers find the page, with the token; the server fills that in
    SceneChanges _sceneChanges{};          // what may be changed
};
} // namespace Monitor
