#pragma once

#include "host/run/SensorValues.h"
#include "monitor/Server.h"
#include "scene/run/Session.h"

#include <memory>

namespace Host {

/// How a run may be asked from outside, beside the Unix socket.
struct MonitorSettings {
    std::string _listen; // as Monitor::ServerOptions has it
    bool _write = false;
    double _rate = 0; // frames a second
};

/// Answers who asks about a run, from its first frame to its last.
/// Ownership: refers to session and recorder, and to what `changes` needs, which must live as long.
/// Threads:   the scene thread.
class RunMonitor {
public:
    /// Where nobody can ask, it says so, and the run goes on. Without a recorder nobody can have the run recorded.
    RunMonitor(const Scenes::Session& session, const MonitorSettings& settings, const Scenes::Say& say,
               Monitor::Recorder* recorder = nullptr, Monitor::SceneChanges changes = {});
    ~RunMonitor() { _values.end(); }
    RunMonitor(const RunMonitor&) = delete;
    RunMonitor& operator=(const RunMonitor&) = delete;

    /// Behind each frame; `now` in wall-clock seconds. Waits for nobody.
    void endFrame(std::uint64_t frames, std::uint64_t leftOut, double now);

    /// The session has other sensors now.
    void follow() { _values.follow(_session.watches()); }
    void setRate(double rate) { _rate = rate; }

private:
    Monitor::SceneView view();
    Explain::ScenePlaces places() OSTREL_EXCLUDES(_placesLock);

    const Scenes::Session& _session;
    SensorValues _values;
    std::atomic<std::uint64_t> _frames{0}, _leftOut{0};
    std::atomic<double> _rate;
    Ostrel::Mutex _placesLock{Ostrel::LockRank::Leaf};
    Scenes::SceneFiles _placed OSTREL_GUARDED_BY(_placesLock); // of which _places tells
    Explain::ScenePlaces _places OSTREL_GUARDED_BY(_placesLock);
    std::unique_ptr<Monitor::Server> _server; // ends first
};
} // namespace Host
