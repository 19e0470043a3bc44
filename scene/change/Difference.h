#pragma once

#include "scene/file/SceneFile.h"
#include "scene/parts/NodeLabels.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Scenes {

/// The files of a run, in the order of its scenes. A file is never changed once it is here, so any thread may read it.
using SceneFiles = std::vector<std::shared_ptr<const SceneFile>>;

/// A part that is there in one version of a scene file only, or in both and not alike. Null where it is not there;
/// else it stands in _before or _after of the SceneDifference.
template <class Entry>
struct PartChange {
    const Entry* _before = nullptr;
    const Entry* _after = nullptr;
    std::string _why{}; // for people, where it is in both: "buffer 1 -> 8"
};
using HandlerChange = PartChange<HandlerEntry>;
using SensorChange = PartChange<SensorEntry>;

/// A node of a handler that stays, by its label there.
struct NodeChange {
    std::string _handler; // its name
    std::string _label;
    std::optional<LabelledNode> _before, _after; // nothing where it is not there
};

/// A route or link that came or went. A pair that is there twice has come or gone twice.
struct RouteChange {
    std::string _handler; // the name of the handler whose route it is; empty for the root's, and for links
    LocatedPair _route;
    bool _isNew;
};

/// What differs between two versions of one scene file. Handlers and sensors are compared by name, nodes by label,
/// routes and links by their ends; where something stands in a file, and in which order, is no difference unless labels
/// follow from it. Nodes and routes of handlers that come, go or are made anew are not listed: they do so with them.
struct SceneDifference {
    std::shared_ptr<const SceneFile> _before, _after;
    std::vector<HandlerChange> _handlers;
    std::vector<NodeChange> _nodes;
    std::vector<SensorChange> _sensors;
    std::vector<SensorChange> _values; // of sensors that stay: those whose `value` is another one, and not taken away
    std::vector<RouteChange> _routes, _links;
    std::vector<std::string> _settings; // of [host], a line each, in words

    bool isEmpty() const;
};

/// One for each scene. Both have the same scenes. Handlers whose label would be another one are made anew, which may
/// follow from what another scene has. Any thread; makes nothing.
std::vector<SceneDifference> differences(const SceneFiles& before, const SceneFiles& after);

/// For people, a line for each: "node 'OneEuro' starts anew: settings 'cutoff=1' -> 'cutoff=2'". Empty where nothing
/// differs.
std::vector<std::string> linesOf(const std::vector<SceneDifference>& differences);
} // namespace Scenes
