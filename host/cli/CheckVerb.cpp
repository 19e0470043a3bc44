#include "host/cli/Verbs.h"

#include "explain/Graph.h"
#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "host/cli/ExitCode.h"
#include "host/output/RunLog.h"
#include "host/run/EndWatch.h"
#include "scene/check/SceneWarnings.h"
#include "scene/file/SceneMemory.h"
#include "sensorManager/SensorHandlerType.h"
#include "trovio/Root.h"

#include <algorithm>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

void say(const std::string& line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
}

// What a graph needs around it. Nothing in it starts, but nodes are made, which may take their time.
class Surroundings {
public:
    Surroundings()
    {
        Ostrel::initSensorManager();
        Trovio::Root::init();
    }
    ~Surroundings() { Trovio::Root::shutdown(); }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    bool isInterrupted() const { return _stop.requested(); }

private:
    const StopSignal _stop;
    const EndWatch _watch{_stop, say};
};

// Without the log's lines, which the notes and the graph tell, too. Null, which is said, where routes cannot be made,
// and where a signal came first.
std::unique_ptr<SceneGraph> makeGraph(const std::vector<SceneFile>& files, const Surroundings& around)
{
    RunLog log(false);
    log.hold(true);
    std::unique_ptr<SceneGraph> graph;
    const auto failure =
        failureOf([&] { graph = std::make_unique<SceneGraph>(files, [&around] { return around.isInterrupted(); }); });
    log.take();
    if (failure)
        say("the scenes cannot be connected: " + escaped(*failure, 1000));
    return around.isInterrupted() ? nullptr : std::move(graph);
}

int interrupted()
{
    say("no answer: ended before the scene was checked");
    return NoAnswer;
}

std::string graphIn(Format format, const Trovio::NamespaceInfo& root, const ScenePlaces& places)
{
    return format == Format::Text   ? graphText(root, places)
           : format == Format::Json ? graphJson(root, places)
                                    : graphDot(root, places);
}

int checkScenes(const std::vector<SceneFile>& files, const Options& options, const Surroundings& around)
{
    const std::unique_ptr<SceneGraph> graph = makeGraph(files, around);
    if (!graph)
        return around.isInterrupted() ? interrupted() : BadUsage;
    const Trovio::NamespaceInfo root = graph->inspect();
    const bool printsGraph = options._graph != Format::Automatic; // then standard output holds nothing else
    int code = Done;
    for (const SceneFile& file : files) {
        SceneWarnings notes(file);
        notes.checkParts(*graph);
        notes.checkRoutes(*graph, root, [&around] { return around.isInterrupted(); });
        if (around.isInterrupted())
            return interrupted();
        if (!notes.finish(printsGraph ? stderr : stdout, options._strict))
            code = BadUsage;
    }
    if (printsGraph)
        std::fputs(graphIn(options._graph, root, graph->places()).c_str(), stdout);
    return code;
}
} // namespace

int partsVerdict(const std::vector<SceneFile>& files)
{
    const Surroundings around;
    const std::unique_ptr<SceneGraph> graph = makeGraph(files, around);
    if (!graph)
        return around.isInterrupted() ? NoAnswer : BadUsage;
    for (const SceneFile& file : files) {
        Problems problems(file._path);
        for (const GraphFault& fault : graph->faults())
            if (fault._scene == &file)
                problems.add(fault._position, escaped(fault._text, 1000));
        if (const std::string text = problems.text(); !text.empty())
            say(text);
    }
    return graph->faults().empty() ? Done : BadUsage;
}

int checkVerb(const Options& options)
{
    const auto files = readScenes(options);
    if (!files)
        return BadUsage;
    return withMemoryFor(*files, [&] {
        const Surroundings around;
        return checkScenes(*files, options, around);
    });
}
} // namespace Host
