#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Monitor {

/// Why a change was not made; nothing has changed then. The text is for people: what, where, the value, what is
/// allowed, and the cure.
class ChangeRefused : public std::runtime_error {
public:
    enum class Why { IsBad, IsNotThere, CannotBeNow }; // as an answer: 400, 404, 409
    ChangeRefused(Why why, const std::string& text) : std::runtime_error(text), _why(why) {}
    const Why _why;
};

/// What may be changed in a program that runs scenes, for those who may write; nothing is written into their files.
/// Each may be empty, returns what was done, a line each, and throws ChangeRefused. Labels are those of the root.
/// Threads: called on threads of the server, several at a time; may wait for the end of a frame, and for nodes that
///          stop and start.
struct SceneChanges {
    using Lines = std::vector<std::string>;
    using Settings = std::vector<std::pair<std::string, std::string>>;

    /// Reads the scene files anew, and does what differs from what runs.
    std::function<Lines()> _reload;

    /// Gives some settings of a node other values: it is made anew and keeps its label and its routes, and nothing else
    /// starts. Also by the end of its label behind a slash.
    std::function<Lines(const std::string& node, const Settings& settings)> _set;
    /// `conversion` is what the third text of a route in a scene file says, or empty.
    std::function<Lines(const std::string& from, const std::string& to, const std::string& conversion)> _addRoute;
    /// Also by the ends of its labels behind a slash, and by labels that nothing has now.
    std::function<Lines(const std::string& from, const std::string& to)> _removeRoute;

    /// Gives the field of the sensor at that out-slot a value, in JSON as the host writes it.
    std::function<Lines(const std::string& label, const std::string& json)> _giveValue;
    /// A value was written into that in-slot, perhaps a sensor's. Waits for nothing.
    std::function<void(const std::string& label, const std::string& json)> _noteValue;

    /// What was changed by hand, as lines of TOML that go into the scene files; empty where nothing was.
    std::function<std::string()> _byHand;
};
} // namespace Monitor
