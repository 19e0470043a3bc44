#include "scene/change/Plan.h"
#include "scene/run/Session.h"
#include "scene/toml/Problems.h"
#include "trovio/Exception.h"
#include "trovio/Root.h"
#include "trovio/Time.h"

#include <algorithm>

namespace Scenes {

using Trovio::Root;

namespace {

void refuseHandlers(const std::vector<SceneDifference>& differences)
{
    for (const SceneDifference& difference : differences) {
        Problems problems(difference._after->_path);
        for (const HandlerChange& change : difference._handlers)
            if (change._after && (!change._before || change._before->_kind._value != change._after->_kind._value))
                if (const std::string fault = handlerFault(change._after->_kind._value); !fault.empty())
                    problems.add(change._after->_kind._position, fault);
        problems.throwIfAny();
    }
}

void endRootRoutes(const SceneDifference& difference)
{
    for (const RouteChange& change : difference._routes)
        if (change._handler.empty() && !change._isNew)
            Root::get().removeRoute(change._route._first._value, change._route._second._value);
}

/// Those that close a loop of nodes are left out, and named.
void beginRootRoutes(const SceneDifference& difference, std::vector<const LocatedPair*>& leftOut)
{
    for (const RouteChange& change : difference._routes)
        if (change._handler.empty() && change._isNew)
            try {
                Root::get().addRoute(change._route._first._value, change._route._second._value);
            } catch (const Trovio::Exception&) { // the file's labels are good
                leftOut.push_back(&change._route);
            }
}
} // namespace

Session::Files Session::files() const
{
    const Ostrel::LockGuard guard(_filesLock);
    return _files;
}

void Session::setFiles(SceneFiles running, Origin origin)
{
    Files files = this->files();
    files._running = std::move(running);
    if (origin == Origin::Read)
        files._loaded = files._running;
    const Ostrel::LockGuard guard(_filesLock);
    std::swap(_files, files); // the old ones go outside the lock
}

void Session::apply(Plan& plan, Origin origin, const Say& say)
{
    const std::vector<SceneDifference>& all = plan.differences();
    if (plan.before() != files()._running)
        throw SceneError("the scenes have been changed meanwhile; try again");
    refuseHandlers(all);
    const auto each = [&](const auto& step) {
        for (std::size_t i = 0; i < all.size(); ++i)
            step(*_scenes[i], all[i]);
    };
    bool areAllRoutes = true;
    std::vector<const LocatedPair*> leftOut; // of the root
    const double now = Trovio::Time::getCurrentTime().getSeconds();
    each([](LoadedScene& scene, const SceneDifference& difference) {
        endRootRoutes(difference);
        scene.endRoutes(difference);
    });
    each([](LoadedScene& scene, const SceneDifference& difference) { scene.endNodes(difference); });
    each([this](LoadedScene& scene, const SceneDifference& difference) {
        _sensorChanges += difference._sensors.empty() ? 0 : 1; // also where what follows throws
        scene.endSensors(difference);
    });
    each([&](LoadedScene& scene, const SceneDifference& difference) {
        _sensorChanges += scene.beginSensors(difference, now) ? 1 : 0;
    });
    each([&say](LoadedScene& scene, const SceneDifference&) { scene.addHandlers(say); });
    each([](LoadedScene& scene, const SceneDifference&) { scene.releaseLabels(); });
    each([&](LoadedScene& scene, const SceneDifference& difference) {
        areAllRoutes = scene.beginRoutes(difference) && areAllRoutes;
        beginRootRoutes(difference, leftOut);
    });
    each([&](LoadedScene& scene, const SceneDifference& difference) { scene.beginNodes(difference, plan, say); });
    setFiles(plan.after(), origin);
    if (!areAllRoutes || !leftOut.empty())
        makeHandlersAnew(leftOut, say);
}

// A route that closes a loop is refused where the nodes stand; where they come after it, as at the start, the last pair
// of the loop stays apart until another one goes.
void Session::makeHandlersAnew(const std::vector<const LocatedPair*>& leftOut, const Say& say)
{
    say("all handlers are made anew: a new route would lead records back into a node that they came from");
    for (const auto& scene : _scenes)
        scene->endHandlers();
    for (const auto& scene : _scenes)
        for (const LocatedPair& route : scene->file()._routes)
            if (std::ranges::none_of(leftOut, [&route](const LocatedPair* left) {
                    return left->_first._value == route._first._value && left->_second._value == route._second._value;
                }))
                Root::get().removeRoute(route._first._value, route._second._value);
    for (const auto& scene : _scenes)
        scene->addHandlers(say);
    connect(say, [] { return false; });
}
} // namespace Scenes
