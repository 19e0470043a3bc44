#include "host/Verbs.h"

#include "host/Escape.h"
#include "host/ExitCode.h"
#include "host/Failure.h"
#include "host/GraphForms.h"
#include "host/NearestName.h"
#include "host/SceneURL.h"
#include "sensorManager/SensorHandlerType.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/Root.h"

#include <algorithm>
#include <cstdio>

namespace Host {
namespace {

// What a run would warn of and go on; so it is said here and is no error either.
class SceneNotes {
public:
    explicit SceneNotes(const SceneFile& scene) : _scene(scene) {}

    void say(std::FILE* summary)
    {
        for (const HandlerEntry& handler : _scene._handlers)
            checkHandler(handler);
        if (_trovioHandlers > 1)
            note({}, "the scene has " + std::to_string(_trovioHandlers) +
                         " Trovio handlers; each of them serves every sensor");
        for (const SensorEntry& sensor : _scene._sensors)
            if (sensor._label._value.empty())
                note(sensor._name._position,
                     "sensor " + inQuotes(sensor._name._value) + " has no label, so nothing can reach it");
        std::size_t routes = _scene._routes.size();
        for (const HandlerEntry& handler : _scene._handlers)
            routes += handler._routes.size();
        std::fprintf(summary, "%s: good: sensors %zu, handlers %zu, routes %zu, links %zu, notes %zu\n",
                     escaped(_scene._path).c_str(), _scene._sensors.size(), _scene._handlers.size(), routes,
                     _scene._links.size(), _notes);
    }

private:
    void checkHandler(const HandlerEntry& handler);
    void checkNode(const LocatedPair& node, const Merid::URL& baseURL);
    void note(Position position, const std::string& text);

    const SceneFile& _scene;
    std::size_t _trovioHandlers = 0;
    std::size_t _notes = 0;
};

void SceneNotes::note(Position position, const std::string& text)
{
    ++_notes;
    std::string place = escaped(_scene._path);
    if (position._line != 0)
        place += ":" + std::to_string(position._line) + ":" + std::to_string(position._column);
    std::fprintf(stderr, "%s: note: %s\n", place.c_str(), text.c_str());
}

void SceneNotes::checkHandler(const HandlerEntry& handler)
{
    constexpr std::string_view kinds[] = {"Trovio", "OT", "ORDAN", "TORVA"};
    const std::string& kind = handler._kind._value;
    if (Ostrel::SensorHandlerType::find(kind) == nullptr)
        note(handler._kind._position,
             "unknown handler kind " + inQuotes(kind) + "; allowed: " + listed(kinds) + nearestHint(kind, kinds));
    if (kind != kinds[0])
        return;
    ++_trovioHandlers;
    for (const LocatedPair& node : handler._nodes)
        checkNode(node, sceneURL(handler._url._value, _scene._path));
}

// A node that stands nowhere opens nothing, but it knows its settings.
void SceneNotes::checkNode(const LocatedPair& node, const Merid::URL& baseURL)
{
    std::unique_ptr<Trovio::Node> made;
    if (const auto failure = failureOf([&] { made = Trovio::NodeType::newInstance(node._first._value); }))
        return note(node._first._position, escaped(*failure, 400));
    made->setBaseURL(baseURL);
    if (const auto failure = failureOf([&] { made->setFieldValues(node._second._value); }))
        note(node._second._position, escaped(*failure, 400));
}

int printGraph(const std::vector<SceneFile>& files, Format format)
{
    const auto failure = failureOf([&] {
        const SceneGraph graph(files);
        const std::string text = format == Format::Text   ? graphText(graph)
                                 : format == Format::Json ? graphJson(graph)
                                                          : graphDot(graph);
        std::fputs(text.c_str(), stdout);
    });
    if (failure)
        std::fprintf(stderr, "no graph can be made: %s\n", escaped(*failure, 1000).c_str());
    return failure ? BadUsage : Done;
}
} // namespace

int checkVerb(const Options& options)
{
    const auto files = readScenes(options);
    if (!files)
        return BadUsage;
    Ostrel::initSensorManager();
    Trovio::Root::init();
    const bool graph = options._graph != Format::Automatic; // then standard output holds nothing else
    for (const SceneFile& file : *files)
        SceneNotes(file).say(graph ? stderr : stdout);
    const int code = graph ? printGraph(*files, options._graph) : Done;
    Trovio::Root::shutdown();
    return code;
}
} // namespace Host
