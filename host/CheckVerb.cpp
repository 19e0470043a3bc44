#include "host/Verbs.h"

#include "host/Escape.h"
#include "host/ExitCode.h"
#include "host/Failure.h"
#include "host/GraphForms.h"
#include "host/RunLog.h"
#include "host/SceneNotes.h"
#include "sensorManager/SensorHandlerType.h"
#include "trovio/Root.h"

#include <optional>

namespace Host {
namespace {

// Without the log's lines about routes, which the notes and the graph tell, too.
std::optional<std::string> makeGraph(const std::vector<SceneFile>& files, std::unique_ptr<SceneGraph>& graph)
{
    RunLog log(false);
    log.hold(true);
    const auto failure = failureOf([&] { graph = std::make_unique<SceneGraph>(files); });
    log.take();
    return failure;
}

std::string graphIn(Format format, const SceneGraph& graph)
{
    return format == Format::Text ? graphText(graph) : format == Format::Json ? graphJson(graph) : graphDot(graph);
}

int checkScenes(const std::vector<SceneFile>& files, Format format)
{
    std::vector<SceneNotes> notes(files.begin(), files.end());
    for (SceneNotes& scene : notes)
        scene.checkParts();
    std::unique_ptr<SceneGraph> graph;
    if (const auto failure = makeGraph(files, graph)) {
        std::fprintf(stderr, "the scenes cannot be connected: %s\n", escaped(*failure, 1000).c_str());
        return BadUsage;
    }
    const Trovio::NamespaceInfo root = graph->inspect();
    const bool printsGraph = format != Format::Automatic; // then standard output holds nothing else
    for (SceneNotes& scene : notes) {
        scene.checkRoutes(*graph, root);
        scene.printSum(printsGraph ? stderr : stdout);
    }
    if (printsGraph)
        std::fputs(graphIn(format, *graph).c_str(), stdout);
    return Done;
}
} // namespace

int checkVerb(const Options& options)
{
    const auto files = readScenes(options);
    if (!files)
        return BadUsage;
    Ostrel::initSensorManager();
    Trovio::Root::init();
    const int code = checkScenes(*files, options._graph);
    Trovio::Root::shutdown();
    return code;
}
} // namespace Host
