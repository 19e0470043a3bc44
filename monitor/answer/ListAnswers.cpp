#include "explain/Counts.h"
#include "explain/SlotTypes.h"
#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/ObjectText.h"
#include "monitor/answer/SlotMap.h"
#include "monitor/codec/SlotCodec.h"
#include "trovio/Root.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <span>
#include <unistd.h>

// What there is: lists, and the graph.
namespace Monitor {
namespace {

using Json = nlohmann::ordered_json;

/// As Explain::countsJson() has it.
void addCounts(ObjectText& object, const Trovio::SlotInfo& slot)
{
    if (slot._out) {
        object.add("written", slot._out->_written);
    } else {
        object.add("stored", slot._in->_counts.stored);
        object.add("overwritten", slot._in->_counts.overwritten);
        object.add("taken", slot._in->_counts.taken);
        object.add("waiting", slot._in->_counts.waiting);
        object.add("interrupts", slot._in->_interrupts);
        object.add("notStored", slot._in->_notStored);
        object.add("cutShort", slot._in->_cutShort);
    }
    const Trovio::StampCounts& stamps = slot._out ? slot._out->_stamps : slot._in->_stamps;
    object.add("lastStamp", stamps._last.getSeconds());
    object.add("future", stamps._future);
    object.add("backwards", stamps._backwards);
}

void appendSlot(std::string& text, const SlotMap& map, const SlotMap::Place& place)
{
    const Trovio::SlotInfo& slot = *place._slot;
    ObjectText object(text);
    object.add("label", place._label);
    if (const std::string brief = map.shortLabelOf(place); !brief.empty())
        object.add("short", brief);
    object.add("direction", Explain::directionOf(slot));
    object.add("type", slot._typeName);
    if (const SlotCodec* const codec = SlotCodec::find(slot._typeName))
        object.add("schema", codec->schemaName());
    else
        object.addNull("schema");
    object.add("active", slot._active);
    addCounts(object, slot);
    if (!place._sensor.empty())
        object.add("sensor", place._sensor);
}

Json sensorJson(const SceneView& scene, const SlotMap& map, const SlotMap::Place& place,
                const Explain::ScenePlaces::Sensor& sensor)
{
    const std::string title = map.titleOf(sensor);
    Json object{{"name", sensor._name},
                {"scene", map.places()._scenes.at(sensor._scene)},
                {"field", Explain::fieldTypeFor(place._slot->_typeName)},
                {"type", place._slot->_typeName},
                {"label", place._label},
                {"value", nullptr}};
    if (scene._fieldJson)
        object["value"] = Json::parse(scene._fieldJson(title), nullptr, false);
    if (scene._changes) {
        const ChangeCounts counts = scene._changes(title);
        object["changes"] = counts._changes;
        object["age"] = counts._age < 0 ? Json() : Json(counts._age);
    }
    return object;
}

/// As a path that another process can compare with its own.
std::string realPath(const std::string& path)
{
    std::error_code failure;
    const std::filesystem::path real = std::filesystem::canonical(path, failure);
    return failure ? path : real.string();
}

} // namespace

// The addresses may have the token, so they are for who may do everything anyhow.
Answer answerHost(const Context& context, const Question& question)
{
    Json scenes = Json::array();
    const Explain::ScenePlaces places = placesOf(context);
    for (const std::string& path : places._scenes)
        scenes.push_back(realPath(path));
    Json object{{"pid", ::getpid()}, {"version", MONITOR_VERSION},     {"name", context._scene._name},
                {"scenes", scenes},  {"checksums", places._checksums}, {"started", context._started}};
    if (context._scene._frames) {
        const FrameCounts frames = context._scene._frames();
        object.update({{"rate", frames._rate}, {"frames", frames._run}, {"leftOut", frames._leftOut}});
    }
    if (question._mayWrite)
        object["addresses"] = context._scene._addresses;
    return jsonAnswer(object);
}

Answer answerSlots(const Context& context, const Question& question)
{
    const SlotMap map(Trovio::Root::get().inspect(), placesOf(context));
    const auto append = [&map](std::string& text, const SlotMap::Place& place) { appendSlot(text, map, place); };
    std::string text;
    if (const auto asked = question._query.find("label"); asked != question._query.end()) {
        std::string problem;
        const SlotMap::Place* const place = map.find(asked->second, problem);
        if (!place)
            throw Refusal(404, problem);
        appendList(text, std::span(place, 1), append);
    } else {
        appendList(text, map.all(), append);
    }
    return {200, "application/json", text + "\n"};
}

Answer answerSensors(const Context& context, const Question&)
{
    const SlotMap map(Trovio::Root::get().inspect(), placesOf(context));
    Json sensors = Json::array();
    for (const auto& [home, sensor] : map.places()._sensors)
        if (const SlotMap::Place* const place = map.findByPath(Explain::pathBelow(home.first, home.second)))
            sensors.push_back(sensorJson(context._scene, map, *place, sensor));
    return jsonAnswer(sensors);
}

Answer answerNodes(const Context& context, const Question&)
{
    const Explain::ScenePlaces places = placesOf(context);
    Json nodes = Explain::nodesJson(Trovio::Root::get().inspect());
    for (Json& node : nodes)
        if (const auto known = places._settings.find(node.at("node")); known != places._settings.end())
            node["settings"] = known->second;
    return jsonAnswer(nodes);
}

Answer answerTypes(const Context&, const Question&)
{
    Json types = Json::array();
    for (const SlotCodec* const codec : SlotCodec::all())
        types.push_back({{"type", codec->slotType()}, {"schema", codec->schemaName()}, {"text", codec->schemaText()}});
    return jsonAnswer(types);
}

Answer answerGraph(const Context& context, const Question& question)
{
    const auto asked = question._query.find("form");
    const std::string form = asked == question._query.end() ? "json" : asked->second;
    const Trovio::NamespaceInfo root = Trovio::Root::get().inspect();
    if (form == "json")
        return {200, "application/json", Explain::graphJson(root, placesOf(context))};
    if (form == "dot")
        return {200, "text/vnd.graphviz", Explain::graphDot(root, placesOf(context))};
    if (form == "text")
        return {200, "text/plain; charset=utf-8", Explain::graphText(root, placesOf(context))};
    throw Refusal(400, "a graph has no form " + Explain::inQuotes(form) + "; allowed are json, dot and text");
}

} // namespace Monitor
