#pragma once

#include "trovio/Settings.h"
#include <string>
#include <string_view>
#include <vector>

// Settings that hold a list of names with slot value types: 'Wand Vec3f, Scan Vec3f[]'.
namespace Trovio::Nodes {

/// How many slots a list may name.
constexpr std::size_t MaxListedSlots = 1024;
/// How many records may wait in all slots of a node.
constexpr std::size_t MaxWaitingRecords = 1048576;

struct ListedSlot {
    std::string _name;
    std::string _typeName; // of a slot value type
};

/// What the names of a list look like.
struct ListedNames {
    bool (*_isName)(std::string_view name);
    std::string _one;     // "an address"
    std::string _allowed; // what such a name consists of, in words
};

/// Throws InvalidFieldException, with the entry and what is allowed, for anything else, for a name that is listed
/// twice, and for more than MaxListedSlots.
std::vector<ListedSlot> readSlotList(const Settings& settings, const char* setting, const ListedNames& names);

/// How many records may wait in each of that many slots.
std::size_t shareOfWaiting(std::size_t slots);

/// For a node with that many slots, each with as many places as the setting says. Throws InvalidFieldException for
/// more than MaxWaitingRecords.
void checkQueues(const Settings& settings, const char* setting, std::size_t slots);

} // namespace Trovio::Nodes
