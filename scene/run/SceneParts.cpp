#include "scene/run/SceneParts.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "explain/text/NearestName.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorHandlerType.h"
#include "trovio/NodeType.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

namespace {

// The bridge needs a root to stand under; the others are made to see whether they can be.
bool canBeMade(const std::string& kind)
{
    Ostrel::SensorHandlerType* const type = Ostrel::SensorHandlerType::find(kind);
    return type != nullptr && (kind == bridgeKind || std::unique_ptr<Ostrel::SensorHandler>(
                                                         type->createHandler(kind, Merid::URL("file:."))) != nullptr);
}
} // namespace

std::string handlerFault(const std::string& kind)
{
    constexpr std::string_view usable[] = {bridgeKind, "OT", "ORDAN"};
    if (canBeMade(kind))
        return {};
    const bool isKnown = Ostrel::SensorHandlerType::find(kind) != nullptr;
    return (isKnown ? "no handler of kind " + inQuotes(kind) + " can be made by this program"
                    : "unknown handler kind " + inQuotes(kind)) +
           "; allowed: " + listed(usable) + nearestHint(kind, usable);
}

MadeNode madeNode(const LabelledNode& node, const Merid::URL& baseURL)
{
    const LocatedPair& entry = *node._entry;
    const std::string& type = entry._first._value;
    MadeNode made;
    if (const auto failure = failureOf([&] { made._node = Trovio::NodeType::newInstance(type); })) {
        const bool isKnown = std::ranges::count(Trovio::NodeType::names(), type) != 0;
        return {nullptr, *failure, entry._first._position, isKnown};
    }
    const auto failure = failureOf([&] {
        made._node->setBaseURL(baseURL);
        made._node->setFieldValues(node._settings);
    });
    if (failure)
        return {nullptr, *failure, (entry._second._position._line != 0 ? entry._second : entry._first)._position};
    return made;
}
} // namespace Scenes
