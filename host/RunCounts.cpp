#include "host/RunCounts.h"

#include "host/Escape.h"
#include "host/JsonText.h"
#include "host/TreeWalk.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {
namespace {

using Json = nlohmann::ordered_json;

// Calls visit(path, slot) for every slot, at the place where it stands.
template <class Visit>
void forEachSlot(const Trovio::NamespaceInfo& root, const Visit& visit)
{
    walkTree(root, [&visit](const std::string& path, const Trovio::NamespaceInfo& info) {
        for (const Trovio::SlotInfo& slot : info._slots)
            if (slot._own)
                visit(pathBelow(path, slot._label), slot);
    });
}

bool wasUsed(const Trovio::SlotInfo& slot)
{
    return slot._out ? slot._out->_written != 0 : slot._in->_counts.stored != 0;
}

const Trovio::StampCounts& stampsOf(const Trovio::SlotInfo& slot)
{
    return slot._out ? slot._out->_stamps : slot._in->_stamps;
}

std::string column(const std::string& text, int width)
{
    const int missing = width - static_cast<int>(displayWidth(text));
    return std::string(missing > 0 ? static_cast<std::size_t>(missing) : 0, ' ') + text;
}

// One line of the table. The numbers of the other direction are left out.
std::string row(const std::string& path, const Trovio::SlotInfo& slot)
{
    std::string line = escaped(path) + column(slot._typeName, 52 - static_cast<int>(displayWidth(escaped(path))));
    line += column(slot._out ? std::to_string(slot._out->_written) : "-", 10);
    const Trovio::InSlotCounts counts = slot._in ? slot._in->_counts : Trovio::InSlotCounts();
    for (const std::uint64_t count : {counts.stored, counts.overwritten, counts.taken, counts.waiting})
        line += column(slot._in ? std::to_string(count) : "-", 12);
    return line + column(std::to_string(stampsOf(slot)._future), 8) +
           column(std::to_string(stampsOf(slot)._backwards), 10);
}

Json toJson(const std::string& path, const Trovio::SlotInfo& slot)
{
    Json object{{"slot", path}, {"direction", slot._out ? "out" : "in"}, {"type", slot._typeName}};
    if (slot._out)
        object["written"] = slot._out->_written;
    else
        object.update({{"stored", slot._in->_counts.stored},
                       {"overwritten", slot._in->_counts.overwritten},
                       {"taken", slot._in->_counts.taken},
                       {"waiting", slot._in->_counts.waiting},
                       {"interrupts", slot._in->_interrupts}});
    object.update({{"lastStamp", stampsOf(slot)._last.getSeconds()},
                   {"future", stampsOf(slot)._future},
                   {"backwards", stampsOf(slot)._backwards}});
    return object;
}

Json toJson(const SensorWatch& watch, double now)
{
    Json object{{"sensor", watch.sensor().getName()},
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

Json toJson(const std::string& path, const Trovio::NodeInfo& node)
{
    Json object{{"node", path},
                {"type", node._typeName},
                {"state", node._state._degraded ? "degraded" : "running"},
                {"reason", node._state._reason},
                {"counts", Json::object()}};
    for (const Trovio::CounterInfo& counter : node._counters)
        object["counts"][counter._name] = counter._value;
    for (const Trovio::RemarkInfo& remark : node._remarks)
        object["remarks"][remark._slot] = remark._text;
    return object;
}
} // namespace

void reportSlots(const Trovio::NamespaceInfo& root, const Say& say)
{
    bool first = true;
    forEachSlot(root, [&](const std::string& path, const Trovio::SlotInfo& slot) {
        if (!wasUsed(slot))
            return;
        if (std::exchange(first, false))
            say("slot                                            type   written      stored overwritten       taken"
                "     waiting  future backwards");
        say(row(path, slot));
    });
}

std::string countsLine(const Session& session, const RunTotals& totals)
{
    Json sensors = Json::array(), slots = Json::array(), nodes = Json::array();
    for (const SensorWatch* watch : session.watches())
        sensors.push_back(toJson(*watch, totals._now));
    forEachSlot(totals._root,
                [&](const std::string& path, const Trovio::SlotInfo& slot) { slots.push_back(toJson(path, slot)); });
    walkTree(totals._root, [&nodes](const std::string& path, const Trovio::NamespaceInfo& info) {
        if (info._node)
            nodes.push_back(toJson(path, *info._node));
    });
    const Json counts{{"frames", totals._frames},
                      {"leftOut", totals._leftOut},
                      {"sensors", std::move(sensors)},
                      {"slots", std::move(slots)},
                      {"nodes", std::move(nodes)}};
    return jsonText(Json{{"counts", counts}}) + "\n";
}
} // namespace Host
