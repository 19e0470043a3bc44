#pragma once

#include "explain/Say.h"
#include "ostrel/Field.h"
#include "scene/SceneError.h"
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {
class Context;
class DirectSensor;
class SensorHandler;
} // namespace Ostrel

namespace Scenes {

/// Scene files that run in this program as `ostrel-host run` runs them: each is read, checked and built into a context
/// with its sensors and handlers, whose nodes start at once. Node modules are found as docs/embedding.md says.
/// Ownership: owns all of it; what it hands out ends with it. The destructor takes everything down in the one order
///            that works, and ends the framework's root.
/// Threads:   made, used and destroyed by one thread, the scene thread, but for plan(). One object per process at a
///            time, in a program that does not call Trovio::Root::init() itself.
/// Errors:    every exception is a std::exception; after one that a constructor threw nothing is left behind.
class SceneRunner {
public:
    /// Each path names a scene file, which gets a context of its own. Blocks while the nodes start; `say`, which may be
    /// empty, gets a line about each handler and node that could not be made.
    /// Throws SceneError where a file cannot be read or is no good, with a line "file:line:column: …" for everything
    /// that is wrong, or where the scenes cannot be connected; std::runtime_error where there is no memory for what
    /// they ask.
    explicit SceneRunner(const std::vector<std::string>& paths, const Explain::Say& say = {});
    ~SceneRunner();
    SceneRunner(const SceneRunner&) = delete;
    SceneRunner& operator=(const SceneRunner&) = delete;

    /// Runs frames at the scenes' rate until `afterFrame` returns false, which gets the frame's time in wall-clock
    /// seconds; without one, for ever. Frames that come too late are left out. Blocks; returns how many frames were
    /// run. What `afterFrame` throws passes through.
    std::uint64_t run(const std::function<bool(double now)>& afterFrame = {});

    /// One frame, for a program that has a loop of its own: fields get what came in, outputs are sent. `now` in
    /// wall-clock seconds.
    void frame(double now);

    /// Reads and checks the files anew, and makes the nodes that will start, without starting them. Returns what
    /// differs from what runs, a line each for people; empty where nothing does. Nothing has changed yet. Any thread,
    /// one at a time, so that no frame waits for the disk. Throws as the constructor does, also where a handler or a
    /// node that is new or has changed cannot be made.
    std::vector<std::string> plan();

    /// Does what plan() has returned last, between two frames; nothing without a plan. All else goes on untouched:
    /// sensors keep values and slots, nodes run. Blocks while nodes stop and start. Sensors and handlers that the plan
    /// names are others behind it: ask for their fields again.
    void apply();

    /// Frames per second: the highest that one of the scenes asks for.
    double rate() const;

    /// What the scenes name and the run goes without, a line each: handlers and nodes that could not be made.
    std::vector<std::string> missing() const;

    /// The sensor with that name, the first one where several scenes have one; null if there is none.
    const Ostrel::DirectSensor* sensor(const std::string& name) const;

    /// The field of that sensor. Throws std::invalid_argument where there is no such sensor, or where its field is of
    /// another class; the text names what there is.
    template <class FieldClass>
    FieldClass& field(const std::string& sensorName) const
    {
        Ostrel::Field& found = fieldOf(sensorName);
        if (auto* const field = dynamic_cast<FieldClass*>(&found))
            return *field;
        throw std::invalid_argument("the field of sensor '" + sensorName + "' is of class " + found.getTypeName());
    }

    /// The handler with that name, the first one where several have it; null if there is none, or if it could not be
    /// made. It takes further nodes and routes: addParameter(), addLabel(). It is not to be deleted.
    Ostrel::SensorHandler* handler(const std::string& name) const;

    /// The context of a scene, in the order of the paths. Throws std::out_of_range.
    Ostrel::Context& context(std::size_t scene = 0) const;

private:
    Ostrel::Field& fieldOf(const std::string& sensorName) const;

    class State;
    const std::unique_ptr<State> _state;
};
} // namespace Scenes
