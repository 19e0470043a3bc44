#include "explain/Counts.h"

#include "explain/TreeWalk.h"
#include "explain/text/DisplayWidth.h"
#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"

#include <array>
#include <nlohmann/json.hpp>
#include <optional>

namespace Explain {
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
    return slot._out ? slot._out->_written != 0 : slot._in->_counts.stored + slot._in->_notStored != 0;
}

Trovio::StampCounts stampsOf(const Trovio::SlotInfo& slot)
{
    return slot._out ? slot._out->_stamps : slot._in ? slot._in->_stamps : Trovio::StampCounts();
}

std::string column(const std::string& text, int width)
{
    const int missing = width - static_cast<int>(displayWidth(text));
    return std::string(missing > 0 ? static_cast<std::size_t>(missing) : 0, ' ') + text;
}

// One number of the report, with the width of its column; nothing where it is none of the slot's direction.
struct Count {
    const char* _name;
    int _width;
    std::optional<std::uint64_t> _value;
};

std::array<Count, 7> countsOf(const Trovio::SlotInfo& slot)
{
    const auto written = slot._out ? std::optional(slot._out->_written) : std::nullopt;
    const auto in = [&slot](std::uint64_t Trovio::InSlotCounts::*count) {
        return slot._in ? std::optional(slot._in->_counts.*count) : std::nullopt;
    };
    return {{{"written", 10, written},
             {"stored", 12, in(&Trovio::InSlotCounts::stored)},
             {"overwritten", 12, in(&Trovio::InSlotCounts::overwritten)},
             {"taken", 12, in(&Trovio::InSlotCounts::taken)},
             {"waiting", 12, in(&Trovio::InSlotCounts::waiting)},
             {"future", 8, stampsOf(slot)._future},
             {"backwards", 10, stampsOf(slot)._backwards}}};
}

constexpr int slotWidth = 52;           // of the columns for slot and type
constexpr std::size_t tableWidth = 128; // of all

std::string heading()
{
    std::string line = "slot" + column("type", slotWidth - 4);
    for (const Count& count : countsOf({}))
        line += column(count._name, count._width);
    return line;
}

// Rare, so that it has no column.
std::string notStored(const Trovio::SlotInfo& slot)
{
    const std::uint64_t count = slot._in ? slot._in->_notStored : 0;
    return count == 0 ? "" : ", " + std::to_string(count) + " not stored for want of memory";
}

std::string row(const std::string& path, const Trovio::SlotInfo& slot)
{
    const std::string name = escaped(path);
    std::string line = name + column(slot._typeName, slotWidth - static_cast<int>(displayWidth(name)));
    for (const Count& count : countsOf(slot))
        line += column(count._value ? std::to_string(*count._value) : "-", count._width);
    return line + notStored(slot);
}

// The same where the table has no room.
std::string sentence(const std::string& path, const Trovio::SlotInfo& slot)
{
    std::string counts;
    for (const Count& count : countsOf(slot))
        if (count._value)
            counts += (counts.empty() ? "" : ", ") + std::string(count._name) + " " + std::to_string(*count._value);
    return "slot " + inQuotes(path) + " (" + slot._typeName + "): " + counts + notStored(slot);
}

Json toJson(const std::string& path, const Trovio::SlotInfo& slot)
{
    Json object{{"slot", path}, {"direction", slot._out ? "out" : "in"}, {"type", slot._typeName}};
    object.update(countsJson(slot));
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

Json countsJson(const Trovio::SlotInfo& slot)
{
    Json object = Json::object();
    if (slot._out)
        object["written"] = slot._out->_written;
    else
        object.update({{"stored", slot._in->_counts.stored},
                       {"overwritten", slot._in->_counts.overwritten},
                       {"taken", slot._in->_counts.taken},
                       {"waiting", slot._in->_counts.waiting},
                       {"interrupts", slot._in->_interrupts},
                       {"notStored", slot._in->_notStored},
                       {"cutShort", slot._in->_cutShort}});
    object.update({{"lastStamp", stampsOf(slot)._last.getSeconds()},
                   {"future", stampsOf(slot)._future},
                   {"backwards", stampsOf(slot)._backwards}});
    return object;
}

void reportSlots(const Trovio::NamespaceInfo& root, std::size_t width, const Say& say)
{
    const bool isTable = width >= tableWidth;
    bool first = isTable;
    forEachSlot(root, [&](const std::string& path, const Trovio::SlotInfo& slot) {
        if (!wasUsed(slot))
            return;
        if (std::exchange(first, false))
            say(heading());
        say(isTable ? row(path, slot) : sentence(path, slot));
    });
}

Json slotsJson(const Trovio::NamespaceInfo& root)
{
    Json slots = Json::array();
    forEachSlot(root,
                [&](const std::string& path, const Trovio::SlotInfo& slot) { slots.push_back(toJson(path, slot)); });
    return slots;
}

Json nodesJson(const Trovio::NamespaceInfo& root)
{
    Json nodes = Json::array();
    walkTree(root, [&nodes](const std::string& path, const Trovio::NamespaceInfo& info) {
        if (info._node)
            nodes.push_back(toJson(path, *info._node));
    });
    return nodes;
}
} // namespace Explain
