#pragma once

#include "explain/Say.h"
#include "host/Options.h"
#include "monitor/Recorder.h"
#include "scene/run/Session.h"

namespace Host {

/// The recorder of a run: records from its first frame on where the caller asked for that, and is there for those who
/// ask while it runs.
/// Ownership: must end before the session does.
/// Threads:   the scene thread.
class RunRecorder {
public:
    /// `tellsStatus`: tells how it goes, on a terminal that nothing else is drawn on. Throws std::runtime_error where
    /// the file cannot be made.
    RunRecorder(const Options& options, bool tellsStatus, const Scenes::Session& session, const Explain::Say& say);

    /// What stands against recording, before anything runs; empty where nothing does.
    static std::string refusal(const Options& options);

    Monitor::Recorder& recorder() { return _recorder; }

    /// Behind each frame; `now` in wall-clock seconds. Waits for nobody.
    void endFrame(std::uint64_t number, double now);

    /// Ends what is being recorded. False where the caller asked for a recording, and it did not go well.
    bool finish();

private:
    const Explain::Say _say;
    const bool _isAskedFor, _tellsStatus;
    Monitor::Recorder _recorder;
    double _nextStatus = 0; // wall-clock seconds
};
} // namespace Host
