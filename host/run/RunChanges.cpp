#include "host/run/RunChanges.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "host/run/GivenValues.h"
#include "host/run/TomlOfJson.h"
#include "scene/change/ChangesText.h"
#include "scene/change/HandlerLabels.h"
#include "scene/file/InitialValue.h"
#include "trovio/Root.h"
#include "trovio/Time.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Host {

using namespace Scenes;
using Explain::inQuotes;
using Monitor::ChangeRefused;
using Lines = SceneChanger::Lines;
using Why = ChangeRefused::Why;

namespace {

/// Runs a change of the scenes, and says what is wrong with it in the words of the server.
template <class Change>
Lines changed(const Change& change)
{
    try {
        return change();
    } catch (const NoSuchPart& missing) {
        throw ChangeRefused(Why::IsNotThere, missing.what());
    } catch (const PartInTheWay& other) {
        throw ChangeRefused(Why::CannotBeNow, other.what());
    } catch (const SceneError& bad) {
        throw ChangeRefused(Why::IsBad, bad.what());
    } catch (const JobRefused& refused) {
        throw ChangeRefused(Why::CannotBeNow, refused.what());
    }
}

/// The label of the handler with that name; empty for the root.
std::string pathOf(const SceneFiles& files, const SceneFile& file, const std::string& handler)
{
    const auto scene = std::ranges::find_if(files, [&file](const auto& one) { return one.get() == &file; });
    const auto found = std::ranges::find_if(
        file._handlers, [&handler](const HandlerEntry& entry) { return entry._name._value == handler; });
    if (scene == files.end() || found == file._handlers.end())
        return {};
    return handlerLabels(files)[static_cast<std::size_t>(scene - files.begin())]
                               [static_cast<std::size_t>(found - file._handlers.begin())];
}

/// Why the route that is new carries nothing; empty where it does.
std::string whyPending(const Trovio::NamespaceInfo& space, const LocatedPair& route)
{
    for (const Trovio::RouteInfo& known : space._routes)
        if (known._from == route._first._value && known._to == route._second._value && known.isPending())
            return "the route from " + inQuotes(known._from) + " to " + inQuotes(known._to) +
                   " would carry nothing: " + Explain::escaped(known._reason, 1000);
    return {};
}

/// Why a change that was done is no good; empty where it is.
std::string whyNot(const SceneFiles& before, const SceneFiles& after)
{
    const Trovio::NamespaceInfo root = Trovio::Root::get().inspect();
    std::string why;
    for (const SceneDifference& difference : differences(before, after)) {
        const auto spaceOf = [&](const std::string& handler) {
            const std::string path = pathOf(after, *difference._after, handler);
            const auto child = std::ranges::find(root._children, path, &Trovio::NamespaceInfo::_label);
            return child == root._children.end() ? &root : &*child;
        };
        for (const NodeChange& change : difference._nodes)
            if (change._after &&
                !std::ranges::count(spaceOf(change._handler)->_children, change._label, &Trovio::NamespaceInfo::_label))
                why = "node " + inQuotes(change._label) + " could not be started so; the host has said why";
        for (const RouteChange& change : difference._routes)
            if (why.empty() && change._isNew)
                why = whyPending(*spaceOf(change._handler), change._route);
    }
    return why;
}

/// Does it, and takes it back where it turns out to be no good.
Lines tried(SceneChanger& changer, const SceneChanger::Edit& edit)
{
    SceneFiles before, after;
    const Lines lines = changer.change([&](const SceneFiles& files) {
        before = files;
        return after = edit(files);
    });
    const std::string why = whyNot(before, after);
    if (why.empty())
        return lines;
    const auto failure = Explain::failureOf([&] {
        changer.change([&](const SceneFiles& files) {
            if (files != after)
                throw SceneError("the scenes have been changed meanwhile");
            return before;
        });
    });
    if (failure)
        throw ChangeRefused(Why::CannotBeNow, why + "; it was done, and cannot be taken back: " + *failure);
    throw SceneError(why);
}

/// The scene with a handler whose label the label of the root begins with; null where none has.
const LoadedScene* sceneOf(const Session& session, const std::string& label)
{
    const auto labels = handlerLabels(session.files()._running);
    const auto isAbove = [&label](const std::string& path) { return !path.empty() && label.starts_with(path + "/"); };
    const auto found = std::ranges::find_if(
        labels, [&isAbove](const std::vector<std::string>& paths) { return std::ranges::any_of(paths, isAbove); });
    return found == labels.end() ? nullptr : session.scenes()[static_cast<std::size_t>(found - labels.begin())].get();
}

/// On the scene thread.
void setField(const Session& session, const std::string& label, const TomlValue& value)
{
    const std::string own = label.substr(label.find('/') + 1);
    if (const LoadedScene* const scene = sceneOf(session, label))
        for (const auto& watch : scene->watches())
            if (watch->sensor().isOutput() && watch->sensor().getLabel() == own) {
                if (setInitialValue(watch->field(), value))
                    throw SceneError("the value does not fit the field of sensor " + inQuotes(watch->title()));
                const double now = Trovio::Time::getCurrentTime().getSeconds();
                return watch->field().processValueChange(now, Ostrel::CallerOutside);
            }
    throw NoSuchPart("no output sensor has the label " + inQuotes(label));
}

std::string byHand(const Session& session, const GivenValues& given)
{
    const Session::Files files = session.files();
    std::string text;
    for (std::size_t i = 0; i < files._running.size(); ++i) {
        const std::string one = changesText(*files._loaded[i], *files._running[i], given.ofScene(files, i));
        text.append(text.empty() || one.empty() ? "" : "\n").append(one);
    }
    return text;
}
} // namespace

Monitor::SceneChanges changesOf(Session& session, FrameJobs& jobs, SceneChanger& changer)
{
    const auto given = std::make_shared<GivenValues>();
    changer.whenRead([given](const std::vector<SceneDifference>& done) { given->forget(done); });
    Monitor::SceneChanges changes;
    changes._reload = [&changer] { return changed([&] { return changer.reload(); }); };
    changes._set = [&changer](const std::string& node, const Monitor::SceneChanges::Settings& settings) {
        return changed([&] {
            return tried(changer, [&](const SceneFiles& files) { return withSettings(files, node, settings); });
        });
    };
    changes._addRoute = [&changer](const std::string& from, const std::string& to, const std::string& conversion) {
        return changed([&] {
            return tried(changer, [&](const SceneFiles& files) { return withRoute(files, from, to, conversion); });
        });
    };
    changes._removeRoute = [&changer](const std::string& from, const std::string& to) {
        return changed(
            [&] { return changer.change([&](const SceneFiles& files) { return withoutRoute(files, from, to); }); });
    };
    changes._giveValue = [&session, &jobs, given](const std::string& label, const std::string& json) {
        const auto value = tomlValue(nlohmann::json::parse(json, nullptr, false));
        if (!value)
            throw ChangeRefused(Why::IsBad, "a sensor cannot be given such a value: " + Explain::escaped(json));
        changed([&] { return jobs.run([&] { setField(session, label, *value); }), Lines(); });
        given->note(label, json);
        return Lines{inQuotes(label) + " has the value " + Explain::escaped(json)};
    };
    changes._noteValue = [given](const std::string& label, const std::string& json) { given->note(label, json); };
    changes._byHand = [&session, given] { return byHand(session, *given); };
    return changes;
}
} // namespace Host
