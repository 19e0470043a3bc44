#include "nodes/text/TextSlots.h"

#include "nodes/text/TextValue.h"
#include "trovio/SlotTypes.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

bool isTextType(const std::string& typeName)
{
    bool isOne = false;
    withSlotType(typeName, [&isOne]<class T>(TypeTag<T>) { isOne = TextSlotValue<T>; });
    return isOne;
}

} // namespace

std::vector<ListedSlot> readTextSlots(const Settings& settings, const char* setting, const ListedNames& names)
{
    std::vector<ListedSlot> slots = readSlotList(settings, setting, names);
    for (const ListedSlot& slot : slots)
        if (!isTextType(slot._typeName))
            throw settings.refusal(setting, "types that consist of numbers, and String, but " + slot._name + " is of " +
                                                slot._typeName);
    return slots;
}

void checkApart(const Settings& settings, const std::vector<ListedSlot>& in, const std::vector<ListedSlot>& out)
{
    std::vector<std::string> known;
    known.reserve(in.size());
    for (const ListedSlot& slot : in)
        known.push_back(slot._name);
    std::ranges::sort(known);
    for (const ListedSlot& slot : out)
        if (std::ranges::binary_search(known, slot._name))
            throw settings.refusal("out", "labels that 'in' does not have, but both have " + slot._name +
                                              "; use two nodes for that");
}

} // namespace Trovio::Nodes
