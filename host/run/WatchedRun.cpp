#include "host/run/WatchedRun.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "host/ExitCode.h"
#include "scene/file/SceneMemory.h"

#include <cstdio>

namespace Host {

using namespace Explain;
using namespace Scenes;

int runWatched(std::vector<SceneFile> files, QueuedOutput::GapLine droppedLine,
               const std::function<int(std::vector<SceneFile>, const WatchedRun&)>& run)
{
    int code = Failed;
    const std::string asked = askedFor(files);
    const auto failure = failureOf([&] {
        RunOutput output(std::move(droppedLine));
        const StopSignal stop;
        EndWatch watch(stop, [&output](const std::string& line) { output.say(line); });
        const auto runAll = [&] { return run(std::move(files), {stop, watch, output}); };
        if (const auto inRun = failureOf([&] { code = withMemoryFor(files, runAll); }))
            output.say("the run failed: " + escaped(*inRun, 4000));
        code = output.finish(code);
    });
    if (failure)
        std::fprintf(stderr, "the run cannot start: %s; it needs some threads beside those of its nodes; %s\n",
                     escaped(*failure, 1000).c_str(), asked.c_str());
    return code;
}
} // namespace Host
