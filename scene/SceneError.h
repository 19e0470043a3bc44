#pragma once

#include <stdexcept>

namespace Scenes {

/// A scene file that cannot be used; what() holds one line per problem, each "file:line:column: …", for people.
class SceneError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
} // namespace Scenes
