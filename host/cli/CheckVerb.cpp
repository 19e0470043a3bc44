#include "host/cli/Verbs.h"

#include "explain/Graph.h"
#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "host/cli/ExitCode.h"
#include "host/output/RunLog.h"
#include "scene/check/SceneNotes.h"
#include "scene/file/SceneMemory.h"
#include "sensorManager/SensorHandlerType.h"
#include "trovio/Root.h"

#include <algorithm>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

// What a graph needs around it. Nothing in it starts.
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
};

// Without the log's lines, which the notes and the graph tell, too. Null, which is said, where routes cannot be made.
std::unique_ptr<SceneGraph> makeGraph(const std::vector<SceneFile>& files)
{
    RunLog log(false);
    log.hold(true);
    std::unique_ptr<SceneGraph> graph;
    const auto failure = failureOf([&] { graph = std::make_unique<SceneGraph>(files); });
    log.take();
    if (failure)
        std::fprintf(stderr, "the scenes cannot be connected: %s\n", escaped(*failure, 1000).c_str());
    return graph;
}

std::string graphIn(Format format, const Trovio::NamespaceInfo& root, const ScenePlaces& places)
{
    return format == Format::Text   ? graphText(root, places)
           : format == Format::Json ? graphJson(root, places)
                                    : graphDot(root, places);
}

int checkScenes(const std::vector<SceneFile>& files, const Options& options)
{
    const std::unique_ptr<SceneGraph> graph = makeGraph(files);
    if (!graph)
        return BadUsage;
    const Trovio::NamespaceInfo root = graph->inspect();
    const bool printsGraph = options._graph != Format::Automatic; // then standard output holds nothing else
    int code = Done;
    for (const SceneFile& file : files) {
        SceneNotes notes(file);
        notes.checkParts(*graph);
        notes.checkRoutes(*graph, root);
        if (!notes.finish(printsGraph ? stderr : stdout, options._strict))
            code = BadUsage;
    }
    if (printsGraph)
        std::fputs(graphIn(options._graph, root, graph->places()).c_str(), stdout);
    return code;
}
} // namespace

bool canBeMade(const std::vector<SceneFile>& files)
{
    const Surroundings surroundings;
    const std::unique_ptr<SceneGraph> graph = makeGraph(files);
    if (!graph)
        return false;
    for (const SceneFile& file : files) {
        Problems problems(file._path);
        for (const GraphFault& fault : graph->faults())
            if (fault._scene == &file)
                problems.add(fault._position, escaped(fault._text, 1000));
        if (const std::string text = problems.text(); !text.empty())
            std::fprintf(stderr, "%s\n", text.c_str());
    }
    return graph->faults().empty();
}

int checkVerb(const Options& options)
{
    const auto files = readScenes(options);
    if (!files)
        return BadUsage;
    return withMemoryFor(*files, [&] {
        const Surroundings surroundings;
        return checkScenes(*files, options);
    });
}
} // namespace Host
