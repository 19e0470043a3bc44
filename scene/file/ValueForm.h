#pragma once

#include <string>

namespace Scenes {

/// How the values of one kind are written in scene files, in JSON and in OSC messages. One row serves the
/// single-value class and the multiple-value class.
struct ValueForm {
    int _code; // of the single-value class
    const char* _scene;
    const char* _json;
    const char* _osc;
};

/// How a field of the class with this code, 1 to 42, is written in a scene, e.g. "a list of [x, y, z]".
std::string sceneForm(int code);
std::string jsonForm(int code);
std::string oscForm(int code);
} // namespace Scenes
