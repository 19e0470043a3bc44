#pragma once

#include "host/output/RunOutput.h"
#include "host/run/EndWatch.h"
#include "scene/file/SceneFile.h"

#include <functional>
#include <vector>

namespace Host {

/// What is around everything that runs scenes: signals end it, a node that hangs is named, memory that runs out is
/// said.
struct WatchedRun {
    const StopSignal& _stop;
    EndWatch& _watch;
    RunOutput& _output;
};

/// Runs the scenes by `run`, which returns the exit code, and returns that, or Failed where it threw, which is said.
/// `droppedLine` is for the output.
int runWatched(std::vector<Scenes::SceneFile> files, QueuedOutput::GapLine droppedLine,
               const std::function<int(std::vector<Scenes::SceneFile>, const WatchedRun&)>& run);
} // namespace Host
