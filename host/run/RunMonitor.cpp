#include "host/run/RunMonitor.h"

#include "explain/text/Failure.h"
#include "scene/run/Places.h"

namespace Host {
namespace {

std::string nameOf(const Explain::ScenePlaces& places)
{
    std::string name = "ostrel-host";
    for (const std::string& scene : places._scenes)
        name += " " + scene;
    return name;
}
} // namespace

RunMonitor::RunMonitor(const Scenes::Session& session, const MonitorSettings& settings, const Scenes::Say& say,
                       Monitor::Recorder* recorder)
    : _values(session.watches())
{
    const auto failure = Explain::failureOf([&] {
        Monitor::SceneView scene = view(session, settings._rate);
        scene._recorder = recorder;
        _server = std::make_unique<Monitor::Server>(
            Monitor::ServerOptions{settings._listen, settings._write, std::move(scene), {}});
    });
    if (failure)
        say("nobody can ask this run: " + *failure);
    else
        for (const std::string& address : _server->addresses())
            say("monitor: " + address);
}

Monitor::SceneView RunMonitor::view(const Scenes::Session& session, double rate)
{
    Monitor::SceneView view;
    view._places = [places = placesOf(session)] { return places; };
    view._fieldJson = [this](const std::string& sensor) { return _values.json(sensor); };
    view._changes = [this](const std::string& sensor) { return _values.changes(sensor); };
    view._frames = [this, rate] { return Monitor::FrameCounts{_frames, _leftOut, rate}; };
    view._name = nameOf(view._places());
    return view;
}

void RunMonitor::endFrame(std::uint64_t frames, std::uint64_t leftOut, double now)
{
    _frames.store(frames, std::memory_order_relaxed);
    _leftOut.store(leftOut, std::memory_order_relaxed);
    _values.endFrame(now);
}
} // namespace Host
