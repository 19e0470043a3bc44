#include "scene/change/Plan.h"

#include "scene/file/SceneURL.h"
#include "scene/parts/SceneParts.h"
#include "scene/toml/Problems.h"

#include <algorithm>

namespace Scenes {
namespace {

const HandlerEntry* handlerNamed(const SceneFile& file, const std::string& name)
{
    const auto found = std::ranges::find_if(
        file._handlers, [&name](const HandlerEntry& handler) { return handler._name._value == name; });
    return found == file._handlers.end() ? nullptr : &*found;
}

/// What ran before goes on as it did: with it, or without it where it could not be made then.
bool wasThere(const HandlerEntry* handler, const LocatedPair& node)
{
    return handler && std::ranges::any_of(handler->_nodes, [&node](const LocatedPair& old) {
               return old._first._value == node._first._value && old._second._value == node._second._value;
           });
}
} // namespace

Plan::Plan(SceneFiles before, SceneFiles after)
    : _before(std::move(before)), _after(std::move(after)), _differences(Scenes::differences(_before, _after))
{
    std::string wrong;
    for (const SceneDifference& difference : _differences) {
        Problems problems(difference._after->_path);
        prepare(difference, problems);
        if (const std::string text = problems.text(); !text.empty())
            wrong.append(wrong.empty() ? "" : "\n").append(text);
    }
    if (!wrong.empty())
        throw SceneError(wrong);
}

void Plan::prepare(const SceneDifference& difference, Problems& problems)
{
    for (const HandlerChange& change : difference._handlers) {
        if (!change._after)
            continue;
        const HandlerEntry& handler = *change._after;
        const std::string& kind = handler._kind._value;
        if ((!change._before || change._before->_kind._value != kind) && !isKnownKind(kind))
            problems.add(handler._kind._position, handlerFault(kind));
        if (kind == bridgeKind)
            for (const LabelledNode& node : labelledNodes(handler))
                prepare(difference, handler, node, problems);
    }
    for (const NodeChange& change : difference._nodes) {
        const HandlerEntry& handler = *handlerNamed(*difference._after, change._handler);
        if (change._after && handler._kind._value == bridgeKind)
            prepare(difference, handler, *change._after, problems);
    }
}

void Plan::prepare(const SceneDifference& difference, const HandlerEntry& handler, const LabelledNode& node,
                   Problems& problems)
{
    std::optional<NodeFault> fault;
    auto made = makeNode(node, sceneURL(handler._url._value, difference._after->_path), fault);
    const HandlerEntry* const old = handlerNamed(*difference._before, handler._name._value);
    if (!fault)
        _nodes[{&handler, node._label}] = std::move(made);
    else if (!wasThere(old, *node._entry))
        problems.add(fault->_position, fault->_text);
}

bool Plan::isEmpty() const
{
    return std::ranges::all_of(_differences, &SceneDifference::isEmpty);
}

std::unique_ptr<Trovio::Node> Plan::takeNode(const HandlerEntry& handler, const std::string& label)
{
    const auto found = _nodes.find({&handler, label});
    return found == _nodes.end() ? nullptr : std::move(found->second);
}
} // namespace Scenes
