#include "nodes/shared/SlotList.h"

#include "trovio/SlotTypes.h"
#include <algorithm>
#include <set>

namespace Trovio::Nodes {

namespace {

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

std::string typeNames()
{
    std::string names;
    forEachSlotType([&names]<class T>(TypeTag<T>) { names += (names.empty() ? "" : ", ") + TypeName<T>::getName(); });
    return names;
}

ListedSlot readEntry(const Settings& settings, const char* setting, const ListedNames& names, std::string_view entry)
{
    const std::size_t blank = entry.find(' ');
    const std::string name(entry.substr(0, blank));
    const std::string typeName(blank == std::string_view::npos ? "" : trimmed(entry.substr(blank)));
    const std::string where = "in the entry '" + std::string(entry) + "' " + names._one;
    if (!names._isName(name))
        throw settings.refusal(setting, where + ": " + names._allowed);
    if (!withSlotType(typeName, [](auto) {}))
        throw settings.refusal(setting, where + ", a blank and one of " + typeNames());
    return {name, typeName};
}

} // namespace

std::vector<ListedSlot> readSlotList(const Settings& settings, const char* setting, const ListedNames& names)
{
    std::vector<ListedSlot> slots;
    std::set<std::string> seen;
    std::string_view rest = settings.text(setting);
    while (!rest.empty()) {
        if (slots.size() == MaxListedSlots)
            throw settings.refusal(setting, "up to " + std::to_string(MaxListedSlots) + " entries");
        const auto entry = rest.substr(0, rest.find(','));
        slots.push_back(readEntry(settings, setting, names, trimmed(entry)));
        if (!seen.insert(slots.back()._name).second)
            throw settings.refusal(setting, "each name once; duplicate name '" + slots.back()._name + "'");
        if (entry.size() + 1 == rest.size())
            throw settings.refusal(setting, "no comma behind the last entry");
        rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
    }
    return slots;
}

std::size_t shareOfWaiting(std::size_t slots)
{
    return MaxWaitingRecords / std::max<std::size_t>(slots, 1);
}

void checkQueues(const Settings& settings, const char* setting, std::size_t slots)
{
    const auto maxQueue = static_cast<std::int64_t>(shareOfWaiting(slots));
    if (settings.integer(setting) > maxQueue)
        throw settings.refusal(setting, "up to " + std::to_string(maxQueue) + " with " + std::to_string(slots) +
                                            " slots, which makes " + std::to_string(MaxWaitingRecords) +
                                            " records in all");
}

} // namespace Trovio::Nodes
