#include "scene/run/SceneParts.h"

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

std::optional<NodeFault> addNode(Trovio::Namespace& space, const LabelledNode& node, const Merid::URL& baseURL)
{
    const LocatedText &type = node._entry->_first, &settings = node._entry->_second;
    std::unique_ptr<Trovio::Node> made;
    if (const auto failure = failureOf([&] { made = Trovio::NodeType::newInstance(type._value); })) {
        const bool isKnown = std::ranges::count(Trovio::NodeType::names(), type._value) != 0;
        return NodeFault{type._position, *failure, isKnown};
    }
    const auto failure = failureOf([&] {
        made->setBaseURL(baseURL);
        made->setFieldValues(node._settings);
        space.addNamespace(std::move(made));
    });
    if (!failure)
        return std::nullopt;
    return NodeFault{settings._position._line != 0 ? settings._position : type._position, *failure};
}
} // namespace Scenes
