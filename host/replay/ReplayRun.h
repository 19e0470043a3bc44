#pragma once

#include "host/Options.h"
#include "host/run/WatchedRun.h"
#include "monitor/replay/RecordedFile.h"

namespace Host {

/// A recording that is open, with what was found in it.
struct OpenRecording {
    std::unique_ptr<Monitor::Mcap::InputFile> _file;
    Monitor::RecordedFile _recorded;
};

/// Replays it into the scenes, for somebody who looks on. Returns the exit code.
int replayShown(std::vector<Scenes::SceneFile> files, const Options& options, const OpenRecording& recording,
                const WatchedRun& around);

/// The same as a test: nothing is sent, nothing comes from outside, and the lines of the fields are printed, written or
/// compared.
int replayAsTest(std::vector<Scenes::SceneFile> files, const Options& options, const OpenRecording& recording,
                 const WatchedRun& around);
} // namespace Host
