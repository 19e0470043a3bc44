#pragma once

#include "scene/change/Difference.h"
#include "scene/toml/Problems.h"
#include "trovio/Node.h"

#include <map>

namespace Scenes {

/// A change of the scenes of a run that is ready to be done: all that can be wrong with it has been checked, and the
/// nodes that are to start have been made, and not started.
/// Ownership: owns those nodes.
/// Threads:   one at a time; made on any thread while the framework's root is open, and destroyed before it ends.
class Plan {
public:
    /// From what runs to what shall run. Throws SceneError, with a line "file:line:column: …" for each of them, where
    /// there are handlers or nodes that are new or have changed and cannot be made.
    Plan(SceneFiles before, SceneFiles after);

    const SceneFiles& before() const { return _before; }
    const SceneFiles& after() const { return _after; }
    const std::vector<SceneDifference>& differences() const { return _differences; }
    /// What is to be done, for people; empty where that is nothing.
    std::vector<std::string> lines() const { return linesOf(_differences); }

    bool isEmpty() const;

    /// Hands out the node that was made for that label in a handler of the files behind the change; null where none
    /// was, or it was handed out already.
    std::unique_ptr<Trovio::Node> takeNode(const HandlerEntry& handler, const std::string& label);

private:
    void prepare(const SceneDifference& difference, Problems& problems);
    void prepare(const SceneDifference& difference, const HandlerEntry& handler, const LabelledNode& node,
                 Problems& problems);

    SceneFiles _before, _after;
    std::vector<SceneDifference> _differences;
    std::map<std::pair<const HandlerEntry*, std::string>, std::unique_ptr<Trovio::Node>> _nodes;
};
} // namespace Scenes
