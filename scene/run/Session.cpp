#include "scene/run/Session.h"

#include "explain/text/Failure.h"
#include "scene/run/OpenRoot.h"
#include "trovio/Root.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

namespace {

bool getsFromAnother(const std::string& label, const Trovio::NamespaceInfo& root)
{
    const auto isBelow = [prefix = label + "/"](const std::string& end) { return end.starts_with(prefix); };
    for (const Trovio::RouteInfo& route : root._routes)
        for (const Trovio::RoutePair& pair : route._pairs)
            if (pair._reason.empty() && isBelow(pair._to) && !isBelow(pair._from))
                return true;
    return false;
}

// A namespace that gets nothing from the others, so that all they get from it was counted on both sides; any, if they
// feed each other in a ring.
const std::string& nextToStop(const Trovio::NamespaceInfo& root)
{
    const auto free = std::ranges::find_if(
        root._children, [&root](const Trovio::NamespaceInfo& child) { return !getsFromAnother(child._label, root); });
    return free == root._children.end() ? root._children.front()._label : free->_label;
}
} // namespace

Session::Session()
{
    OpenRoot::open();
}

Session::~Session()
{
    tearDown();
}

// The one order of ending; every other one aborts somewhere: observers need their handlers, handlers need the root,
// and nodes run code of modules that the root closes.
void Session::tearDown()
{
    for (const auto& scene : _scenes)
        scene->unregisterSensors();
    for (const auto& scene : _scenes)
        scene->deleteHandlers();
    _scenes.clear();
    _stopped.clear();
    Trovio::Root::shutdown();
}

bool Session::build(std::vector<SceneFile> files, const Say& say, const Stopped& stopped, const ChooseNode& choose)
{
    const bool several = files.size() > 1;
    SceneFiles shared;
    for (SceneFile& file : files) {
        const std::string title = several ? file._path : std::string();
        shared.push_back(std::make_shared<const SceneFile>(std::move(file)));
        _scenes.push_back(std::make_unique<LoadedScene>(shared.back(), title, stopped, choose));
        _scenes.back()->addSensors();
        _scenes.back()->addHandlers(say);
    }
    setFiles(std::move(shared), Origin::Read);
    connect(say, stopped);
    return !stopped();
}

// What comes once all handlers stand.
void Session::connect(const Say& say, const Stopped& stopped)
{
    for (const auto& scene : _scenes)
        scene->releaseLabels();
    for (const auto& scene : _scenes)
        for (const LocatedPair& route : scene->file()._routes)
            if (!stopped())
                Trovio::Root::get().addRoute(route._first._value, route._second._value);
    for (const auto& scene : _scenes)
        scene->addNodes(say);
}

// A namespace stops all its nodes before it lets go of any connection.
Trovio::NamespaceInfo Session::stopNodes()
{
    Trovio::Namespace& root = Trovio::Root::get();
    Trovio::NamespaceInfo left = root.inspect();
    std::vector<Trovio::NamespaceInfo> stopped;
    for (; !left._children.empty(); left = root.inspect()) {
        const std::string label = nextToStop(left);
        _stopped.push_back(root.removeNamespace(label));
        stopped.push_back(_stopped.back()->inspect());
        stopped.back()._label = label;
    }
    std::ranges::sort(stopped, {}, &Trovio::NamespaceInfo::_label);
    left._children = std::move(stopped);
    return left;
}

void Session::frame(double now)
{
    for (const auto& scene : _scenes)
        scene->frame(now);
}

std::vector<SensorWatch*> Session::watches() const
{
    std::vector<SensorWatch*> all;
    for (const auto& scene : _scenes)
        for (const auto& watch : scene->watches())
            all.push_back(watch.get());
    return all;
}
} // namespace Scenes
