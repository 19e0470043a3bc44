#include "scene/SceneRunner.h"

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
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
    {
        std::vector<SceneFile> files = readScenes(paths);
        for (const SceneFile& file : files)
            _rate = std::max(_rate, file._host._rate._value);
        const Say sayOrNot = say ? say : [](const std::string&) {};
        try {
            withMemoryFor(files, [&] { _session.build(std::move(files), sayOrNot); });
        } catch (const Trovio::Exception& error) { // which is no std::exception
            throw SceneError("the scenes cannot be connected: " + escaped(error.getMessage(), 1000));
        }
    }

    /// Null if there is none.
    SensorWatch* find(const std::string& sensorName) const;

    Session _session;
    double _rate = 0;
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
        return !afterFrame || afterFrame(now);
    });
    return loop.frames();
}

void SceneRunner::frame(double now)
{
    _state->_session.frame(now);
}

double SceneRunner::rate() const
{
    return _state->_rate;
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
