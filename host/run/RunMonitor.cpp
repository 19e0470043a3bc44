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
                       Monitor::Recorder* recorder, Monitor::SceneChanges changes)
    : _session(session), _values(session.watches()), _rate(settings._rate)
{
    const auto failure = Explain::failureOf([&] {
        Monitor::SceneView scene = view();
        scene._recorder = recorder;
        scene._sceneChanges = std::move(changes);
        _server = std::make_unique<Monitor::Server>(
            Monitor::ServerOptions{settings._listen, settings._write, std::move(scene), {}});
    });
    if (failure)
        say("nobody can ask this run: " + *failure);
    else
        for (const std::string& address : _server->addresses())
            say("monitor: " + address);
}

Monitor::SceneView RunMonitor::view()
{
    Monitor::SceneView view;
    view._places = [this] { return places(); };
    view._fieldJson = [this](const std::string& sensor) { return _values.json(sensor); };
    view._changes = [this](const std::string& sensor) { return _values.changes(sensor); };
    view._frames = [this] { return Monitor::FrameCounts{_frames, _leftOut, _rate}; };
    view._name = nameOf(places());
    return view;
}

// Made anew where the files are others than the last time.
Explain::ScenePlaces RunMonitor::places()
{
    const Scenes::SceneFiles files = _session.files()._running;
    {
        const Ostrel::LockGuard guard(_placesLock);
        if (_placed == files)
            return _places;
    }
    Explain::ScenePlaces made = placesOf(files);
    const Ostrel::LockGuard guard(_placesLock);
    _placed = files;
    _places = made;
    return made;
}

void RunMonitor::endFrame(std::uint64_t frames, std::uint64_t leftOut, double now)
{
    _frames.store(frames, std::memory_order_relaxed);
    _leftOut.store(leftOut, std::memory_order_relaxed);
    _values.endFrame(now);
}
} // namespace Host
