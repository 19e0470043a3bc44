#include "host/cli/Verbs.h"

#include "explain/Graph.h"
#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "host/ExitCode.h"
#include "host/output/RunLog.h"
#include "host/run/EndWatch.h"
#include "scene/check/SceneWarnings.h"
#include "scene/file/SceneMemory.h"
#include "scene/run/OpenRoot.h"
#include "scene/toml/Problems.h"

#include <climits>
#include <cstdio>
#include <poll.h>
#include <unistd.h>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

void say(const std::string& line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
}

// For the watch, which must not block: the line is dropped where standard error takes nothing now.
void sayIfRead(const std::string& line)
{
    const std::string text = line.substr(0, PIPE_BUF - 1) + "\n";
    pollfd end = {STDERR_FILENO, POLLOUT, 0};
    if (poll(&end, 1, 0) == 1 && (end.revents & POLLOUT) != 0) [[maybe_unused]]
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
}

// What a graph is built in. Nothing starts, but nodes are made, which may hang: signals are heard, and such a node is
// named.
class Surroundings {
public:
    bool isInterrupted() const { return _stop.requested(); }

private:
    const StopSignal _stop;
    const EndWatch _watch{_stop, sayIfRead};
    const OpenRoot _root; // closes before the watch ends, for nodes may hang then, too
};

// What was found in one scene: notes are printed at once, what is wrong at the end.
class CheckReport {
public:
    explicit CheckReport(const SceneFile& scene) : _scene(scene), _problems(scene._path) {}

    void take(const SceneFinding& finding)
    {
        constexpr std::size_t maxNotes = 200; // printed; the rest is counted
        const Position position{finding._line, finding._column};
        if (finding._isError)
            _problems.add(position, finding._text);
        else if (++_notes <= maxNotes)
            say(placeText(_scene._path, position) + ": note: " + finding._text);
        else
            ++_notPrinted;
    }

    // Says what is wrong, or else on `out` that the scene is good, how much there is in it, and how many notes there
    // were. Whether it is good; where `strict`, notes are wrong, too.
    bool finish(std::FILE* out, bool strict) const
    {
        const std::string path = escaped(_scene._path);
        if (_notPrinted > 0)
            say(path + ": and " + std::to_string(_notPrinted) + " more notes");
        if (const std::string text = _problems.text(); !text.empty())
            return say(text), false;
        if (strict && _notes > 0)
            return say(path + ": refused, as --strict asks: notes " + std::to_string(_notes)), false;
        printSum(path, out);
        return true;
    }

private:
    void printSum(const std::string& path, std::FILE* out) const
    {
        std::size_t routes = _scene._routes.size();
        for (const HandlerEntry& handler : _scene._handlers)
            routes += handler._routes.size();
        std::fprintf(out, "%s: good: sensors %zu, handlers %zu, routes %zu, links %zu, notes %zu\n", path.c_str(),
                     _scene._sensors.size(), _scene._handlers.size(), routes, _scene._links.size(), _notes);
    }

    const SceneFile& _scene;
    Problems _problems;
    std::size_t _notes = 0, _notPrinted = 0;
};

// Hides the log, whose lines the notes and the graph repeat. Null where the scenes cannot be connected, which is said,
// and where a signal came first.
std::unique_ptr<SceneGraph> makeGraph(const std::vector<SceneFile>& files, const Surroundings& around)
{
    RunLog log(false);
    log.hold(true);
    std::unique_ptr<SceneGraph> graph;
    const auto failure = failureOf([&] { graph = connectScenes(files, [&around] { return around.isInterrupted(); }); });
    log.discard();
    if (failure)
        say(*failure);
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
        CheckReport report(file);
        SceneWarnings(file, [&report](const SceneFinding& finding) {
            report.take(finding);
        }).check(*graph, root, [&around] { return around.isInterrupted(); });
        if (around.isInterrupted())
            return interrupted();
        if (!report.finish(printsGraph ? stderr : stdout, options._strict))
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
    std::unique_ptr<SceneGraph> graph = makeGraph(files, around);
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
    const int verdict = graph->faults().empty() ? Done : BadUsage;
    graph.reset(); // destructors of nodes may take their time, and a signal come meanwhile
    return around.isInterrupted() ? NoAnswer : verdict;
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
