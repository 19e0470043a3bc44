#include "scene/SceneRunner.h"

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "scene/change/Plan.h"
#include "scene/file/SceneMemory.h"
#include "scene/file/SceneReader.h"
#include "scene/run/FrameLoop.h"
#include "scene/run/Session.h"
#include "scene/run/SystemClock.h"
#include "trovio/Exception.h"

#include <algorithm>
#include <limits>

namespace Scenes {

using namespace Explain;

class SceneRunner::State {
public:
    State(const std::vector<std::string>& paths, const Say& say)
        : _paths(paths), _say(say ? say : [](const std::string&) {})
    {
        std::vector<SceneFile> files = readScenes(paths);
        try {
            withMemoryFor(files, [&] { _session.build(std::move(files), _say); });
        } catch (const Trovio::Exception& error) { // which is no std::exception
            throw SceneError("the scenes cannot be connected: " + escaped(error.getMessage(), 1000));
        }
    }

    /// Null if there is none.
    SensorWatch* find(const std::string& sensorName) const;

    const std::vector<std::string> _paths;
    const Say _say;
    Session _session;
    std::unique_ptr<Plan> _plan; // goes before the root does
};

SceneRunner::SceneRunner(const std::vector<std::string>& paths, const Explain::Say& say)
    : _state(std::make_unique<State>(paths, say))
{
}

SceneRunner::~SceneRunner() = default;

std::uint64_t SceneRunner::run(const std::function<bool(double now)>& afterFrame)
{
    SystemClock clock;
    FrameLoop loop(clock, rate(), {std::numeric_limits<double>::infinity(), std::numeric_limits<std::uint64_t>::max()});
    loop.run([&](double now) {
        frame(now);
        const bool goesOn = !afterFrame || afterFrame(now);
        loop.setRate(rate());
        return goesOn;
    });
    return loop.frames();
}

void SceneRunner::frame(double now)
{
    _state->_session.frame(now);
}

std::vector<std::string> SceneRunner::plan()
{
    SceneFiles read;
    for (SceneFile& file : readScenes(_state->_paths))
        read.push_back(std::make_shared<const SceneFile>(std::move(file)));
    _state->_plan = std::make_unique<Plan>(_state->_session.files()._running, std::move(read));
    return _state->_plan->lines();
}

void SceneRunner::apply()
{
    const auto plan = std::move(_state->_plan);
    if (!plan)
        return;
    try {
        _state->_session.apply(*plan, Session::Origin::Read, _state->_say);
    } catch (const Trovio::Exception& error) { // which is no std::exception
        throw SceneError("the scenes cannot be changed so: " + escaped(error.getMessage(), 1000));
    }
}

double SceneRunner::rate() const
{
    double rate = 0;
    for (const auto& scene : _state->_session.scenes())
        rate = std::max(rate, scene->file()._host._rate._value);
    return rate;
}

std::vector<std::string> SceneRunner::missing() const
{
    std::vector<std::string> lines;
    for (const auto& scene : _state->_session.scenes())
        std::ranges::move(scene->missingLines(), std::back_inserter(lines));
    return lines;
}

SensorWatch* SceneRunner::State::find(const std::string& sensorName) const
{
    const std::vector<SensorWatch*> all = _session.watches();
    const auto found = std::ranges::find_if(
        all, [&sensorName](const SensorWatch* watch) { return watch->sensor().getName() == sensorName; });
    return found == all.end() ? nullptr : *found;
}

const Ostrel::DirectSensor* SceneRunner::sensor(const std::string& name) const
{
    const SensorWatch* const found = _state->find(name);
    return found ? &found->sensor() : nullptr;
}

Ostrel::Field& SceneRunner::fieldOf(const std::string& sensorName) const
{
    if (const SensorWatch* const found = _state->find(sensorName))
        return found->field();
    std::vector<std::string_view> names;
    for (const SensorWatch* const watch : _state->_session.watches())
        names.push_back(watch->sensor().getName());
    throw std::invalid_argument("no sensor is called " + inQuotes(sensorName) + nearestHint(sensorName, names));
}

Ostrel::SensorHandler* SceneRunner::handler(const std::string& name) const
{
    for (const auto& scene : _state->_session.scenes())
        for (const LoadedHandler& handler : scene->handlers())
            if (handler._entry->_name._value == name)
                return handler._handler;
    return nullptr;
}

Ostrel::Context& SceneRunner::context(std::size_t scene) const
{
    return _state->_session.scenes().at(scene)->context();
}
} // namespace Scenes
