#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Monitor {

/// Why a change was not made; nothing has changed then. The text is for people.
class ChangeRefused : public std::runtime_error {
public:
    enum class Why { IsBad, IsNotThere, CannotBeNow }; // as an answer: 400, 404, 409
    ChangeRefused(Why why, const std::string& text) : std::runtime_error(text), _why(why) {}
    const Why _why;
};

/// What may be changed in a program that runs, for those who may write. Each may be empty, returns what was done, a
/// line each, and throws ChangeRefused.
/// Threads: called on threads of the server, several at a time; may wait for the end of a frame.
struct SceneChanges {
    /// Reads the scene files anew, and does what differs from what runs.
    std::function<std::vector<std::string>()> _reload;
};
} // namespace Monitor
