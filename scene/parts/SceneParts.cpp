#include "scene/parts/SceneParts.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "explain/text/NameHint.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorHandlerType.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

namespace {

// The bridge needs a root to stand under; the others are made to see whether they can be.
bool isUsable(const std::string& kind)
{
    Ostrel::SensorHandlerType* const type = Ostrel::SensorHandlerType::find(kind);
    return type != nullptr && (kind == bridgeKind || std::unique_ptr<Ostrel::SensorHandler>(
                                                         type->createHandler(kind, Merid::URL("file:."))) != nullptr);
}
} // namespace

bool isKnownKind(const std::string& kind)
{
    return Ostrel::SensorHandlerType::find(kind) != nullptr;
}

std::string handlerFault(const std::string& kind)
{
    constexpr std::string_view usable[] = {bridgeKind, "OT", "ORDAN"};
    if (isUsable(kind))
        return {};
    return (isKnownKind(kind) ? "no handler of kind " + inQuotes(kind) + " can be made by this program"
                              : "unknown handler kind " + inQuotes(kind)) +
           "; allowed: " + listed(usable) + nearestHint(kind, usable);
}

bool takesLabel(const std::string& kind)
{
    constexpr std::string_view known[] = {bridgeKind, "OT", "ORDAN", "TORVA"};
    if (isKnownKind(kind))
        return kind == bridgeKind;
    const std::string_view nearest = nearestName(kind, known);
    return nearest.empty() || nearest == bridgeKind;
}

namespace {

NodeFault faultOf(const LabelledNode& node, const std::string& text)
{
    const Position settings = node._entry->_second._position;
    return {settings._line != 0 ? settings : node._entry->_first._position, text};
}
} // namespace

std::unique_ptr<Trovio::Node> makeNode(const LabelledNode& node, const Merid::URL& baseURL,
                                       std::optional<NodeFault>& fault)
{
    const LocatedText& type = node._entry->_first;
    std::unique_ptr<Trovio::Node> made;
    if (const auto failure = failureOf([&] { made = Trovio::NodeType::newInstance(type._value); })) {
        const bool isKnown = std::ranges::count(Trovio::NodeType::names(), type._value) != 0;
        fault = NodeFault{type._position, *failure, isKnown};
        return nullptr;
    }
    const auto failure = failureOf([&] {
        made->setBaseURL(baseURL);
        made->setFieldValues(node._settings);
    });
    if (!failure)
        return made;
    fault = faultOf(node, *failure);
    return nullptr;
}

std::optional<NodeFault> addNode(Trovio::Namespace& space, const LabelledNode& node, const Merid::URL& baseURL,
                                 const ChooseNode& choose, std::unique_ptr<Trovio::Node> made)
{
    std::optional<NodeFault> fault;
    std::unique_ptr<Trovio::Node> chosen = made ? std::move(made) : makeNode(node, baseURL, fault);
    const auto failure = failureOf([&] {
        if (choose)
            chosen = choose(space.getLabel() + "/" + node._label, node._entry->_first._value, std::move(chosen));
        if (!chosen)
            return;
        space.addNamespace(node._label, std::move(chosen));
        fault.reset();
    });
    return failure ? faultOf(node, *failure) : fault;
}
} // namespace Scenes
