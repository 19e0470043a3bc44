#include "explain/text/Escape.h"
#include "host/ExitCode.h"
#include "host/cli/Verbs.h"
#include "host/replay/ReplayRun.h"
#include "host/show/Json.h"
#include "monitor/mcap/format/FileTime.h"
#include "scene/file/SceneMemory.h"
#include "scene/file/SceneReader.h"
#include "scene/toml/Problems.h"

#include <cstdio>
#include <filesystem>
#include <unistd.h>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

using Verdict = Monitor::Mcap::FileState::Verdict;

void say(const std::string& line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
}

// What does not go together; empty where all does.
std::string refusal(const Options& options)
{
    const bool needsKeys = options._startsPaused || options._stepsFrames;
    if (!options._asTest && (!options._golden.empty() || !options._goldenToWrite.empty()))
        return "--golden and --write-golden are for --as-test";
    if (!options._golden.empty() && !options._goldenToWrite.empty())
        return "--golden compares with a file, and --write-golden writes one: give one of them";
    if (options._asTest && (options._loops || needsKeys || options._send))
        return "--as-test has an end, waits for nobody and sends nothing: leave out --loop, --paused, --step and "
               "--send";
    const bool isShown = options._quiet || (options._format != Format::Automatic && options._format != Format::Json);
    if (options._asTest && (isShown || !options._listen.empty() || options._monitorMayWrite))
        return "--as-test writes JSON and answers nobody: leave out --format, --quiet, --monitor and --monitor-write";
    if (needsKeys && isatty(STDIN_FILENO) == 0)
        return "--paused and --step wait for keys, but standard input is no terminal";
    if (!(options._fromPosition < options._toPosition))
        return "--from must be before --to";
    return {};
}

// What the walk through the file found, where a user must know it. False where nothing can be replayed.
bool isReplayable(const std::string& path, const Monitor::RecordedFile& recorded, const Options& options)
{
    const std::string name = escaped(path);
    const auto& state = recorded._state;
    if (state._verdict == Verdict::Foreign)
        return say(name + ": is no recording: " + escaped(state._problem)), false;
    if (state._verdict == Verdict::Damaged)
        say(name + ": is damaged " + escaped(state._problem) + "; what can be read of it is replayed");
    if (recorded._outside > 0)
        say(name + ": " + std::to_string(recorded._outside) + " messages stand in no good chunk and are left out");
    if (recorded._messages == 0)
        return say(name + ": has no messages"), false;
    if (const double length = Monitor::Mcap::secondsOf(recorded._times._end - recorded._times._start);
        options._fromPosition > length)
        return say(name + ": has " + std::to_string(length) + " s, and --from is behind them"), false;
    return true;
}

// Those of the command line, else those in the recording. A scene in a recording is called by both names, and its
// relative file names are looked for beside the recording.
std::vector<SceneFile> scenesOf(const Options& options, const Monitor::RecordedFile& recorded)
{
    if (!options._names.empty())
        return Scenes::readScenes(options._names);
    std::vector<SceneFile> files;
    for (const auto& [name, text] : recorded._scenes)
        files.push_back(parseScene(text, options._file + ":" + std::filesystem::path(name).filename().string()));
    checkSharedMemory(files);
    return files;
}
} // namespace

int replayVerb(const Options& options)
{
    if (const std::string wrong = refusal(options); !wrong.empty())
        return say(wrong), BadUsage;
    OpenRecording recording{Monitor::Mcap::InputFile::open(options._file), {}};
    recording._recorded = Monitor::readRecordedFile(*recording._file, {});
    if (!isReplayable(options._file, recording._recorded, options))
        return Failed;
    std::vector<SceneFile> files;
    try {
        files = scenesOf(options, recording._recorded);
    } catch (const SceneError& error) {
        return say(error.what()), BadUsage;
    }
    if (files.empty())
        return say(escaped(options._file) + ": has no scene in it; name one behind it"), BadUsage;
    const auto replay = options._asTest ? replayAsTest : replayShown;
    return runWatched(std::move(files), options._format == Format::Json ? droppedAsJson : droppedAsText,
                      [&](std::vector<SceneFile> scenes, const WatchedRun& around) {
                          return replay(std::move(scenes), options, recording, around);
                      });
}
} // namespace Host
