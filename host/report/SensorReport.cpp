#include "host/report/SensorReport.h"

#include "explain/RouteEnds.h"
#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"
#include "host/show/Json.h"
#include "scene/check/SensorReach.h"
#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

std::string named(const SensorWatch& watch)
{
    const std::string& label = watch.sensor().getLabel();
    return "sensor " + inQuotes(watch.title()) + (label.empty() ? "" : " (label " + inQuotes(label) + ")");
}

std::string stampFaults(const Trovio::StampCounts& stamps)
{
    std::string text;
    if (stamps._future != 0)
        text += ", " + std::to_string(stamps._future) + " stamped in the future";
    if (stamps._backwards != 0)
        text += ", " + std::to_string(stamps._backwards) + " stamped before the one before";
    return text;
}

std::string lossesOf(const Trovio::InSlotActivity& activity)
{
    std::string text;
    if (activity._notStored != 0)
        text += ", " + std::to_string(activity._notStored) + " not stored for want of memory";
    if (activity._cutShort != 0)
        text += ", " + std::to_string(activity._cutShort) + " frames left values to the next";
    return text;
}

// How often the sensor changed, and how old its value is.
std::string paceOf(const SensorWatch& watch, double now)
{
    if (watch.changes() == 0)
        return {};
    char text[80];
    std::snprintf(text, sizeof text, "; %.3g per second, the last %.3g s old", watch.rate(), watch.age(now));
    return text;
}

std::string slotCounts(const Trovio::Slot& slot)
{
    if (const auto* out = dynamic_cast<const Trovio::BasicOutSlot*>(&slot))
        return "; out-slot: " + std::to_string(out->getWritten()) + " written";
    const auto* in = dynamic_cast<const Trovio::BasicInSlot*>(&slot);
    if (in == nullptr)
        return {};
    const Trovio::InSlotActivity activity = in->getActivity();
    const Trovio::InSlotCounts& counts = activity._counts;
    return "; in-slot: " + std::to_string(counts.stored) + " stored, " + std::to_string(counts.overwritten) +
           " overwritten, " + std::to_string(counts.taken) + " taken, " + std::to_string(counts.waiting) + " waiting" +
           lossesOf(activity) + stampFaults(activity._stamps);
}

struct Ends {
    bool _connected, _apart; // in the tree, of the slot that has the sensor's label
};

std::string whyUnbound(const SensorEntry& entry, const SensorWatch& watch, const std::set<std::string>& linked,
                       Ends ends)
{
    if (entry._label._value.empty())
        return " is bound to nothing: it has no label";
    if (watch.slots().empty())
        return noSlotFor(entry._type._value);
    if (ends._connected)
        return {};
    const bool isOutput = entry._output._value;
    return ends._apart ? unconnected(isOutput, std::string("the route ") + (isOutput ? "from" : "to") +
                                                   " its label does not connect")
                       : whyUnreached(entry, linked);
}

nlohmann::ordered_json toJson(const SensorWatch& watch, double now)
{
    nlohmann::ordered_json object{{"sensor", watch.sensor().getName()},
                                  {"label", watch.sensor().getLabel()},
                                  {"type", watch.field().getTypeName()},
                                  {"values", watch.changes()},
                                  {"rate", watch.rate()},
                                  {"age", nullptr}};
    if (watch.changes() != 0)
        object["age"] = watch.age(now);
    if (!watch.scene().empty())
        object["scene"] = watch.scene();
    return object;
}
} // namespace

void reportUnbound(LoadedScene& scene, const Trovio::NamespaceInfo& root, const Say& say)
{
    const std::set<std::string> connected = connectedSlots(root), apart = endsApart(root);
    const std::set<std::string> linked = linkTargets(scene.file());
    auto entry = scene.file()._sensors.begin();
    for (const auto& each : scene.watches()) {
        const SensorWatch& watch = *each;
        const auto isIn = [&](const std::set<std::string>& paths) {
            return std::ranges::any_of(scene.handlers(), [&](const LoadedHandler& handler) {
                return paths.contains(pathBelow(handler._namespace, watch.sensor().getLabel()));
            });
        };
        const std::string why = whyUnbound(*entry++, watch, linked, {isIn(connected), isIn(apart)});
        if (!why.empty())
            say(named(watch) + why);
    }
}

void reportValues(LoadedScene& scene, double now, const Say& say)
{
    constexpr std::size_t maxValue = 80;
    for (const auto& each : scene.watches()) {
        const SensorWatch& watch = *each;
        std::string line = named(watch) + " " + watch.field().getTypeName() + ": " + std::to_string(watch.changes()) +
                           " values, last " + valueText(watch.field(), Digits::Few, maxValue);
        for (const Trovio::Slot* slot : watch.slots())
            line += slotCounts(*slot);
        say(line + paceOf(watch, now));
    }
}

nlohmann::ordered_json sensorsJson(const Session& session, double now)
{
    auto sensors = nlohmann::ordered_json::array();
    for (const SensorWatch* watch : session.watches())
        sensors.push_back(toJson(*watch, now));
    return sensors;
}
} // namespace Host
