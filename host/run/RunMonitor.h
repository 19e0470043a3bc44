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
/// Ownership: refers to session and recorder, which must live as long.
/// Threads:   the scene thread.
class RunMonitor {
public:
    /// Where nobody can ask, it says so, and the run goes on. Without a recorder nobody can have the run recorded.
    RunMonitor(const Scenes::Session& session, const MonitorSettings& settings, const Scenes::Say& say,
               Monitor::Recorder* recorder = nullptr);
    ~RunMonitor() { _values.end(); }
    RunMonitor(const RunMonitor&) = delete;
    RunMonitor& operator=(const RunMonitor&) = delete;

    /// Behind each frame; `now` in wall-clock seconds. Waits for nobody.
    void endFrame(std::uint64_t frames, std::uint64_t leftOut, double now);

private:
    Monitor::SceneView view(const Scenes::Session& session, double rate);

    SensorValues _values;
    std::atomic<std::uint64_t> _frames{0}, _leftOut{0};
    std::unique_ptr<Monitor::Server> _server; // ends first
};
} // namespace Host
