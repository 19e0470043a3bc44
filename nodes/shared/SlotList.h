#pragma once

#include "trovio/Settings.h"
#include <string>
#include <string_view>
#include <vector>

// Settings that hold a list of names with slot value types: 'Wand Vec3f, Scan Vec3f[]'.
namespace Trovio::Nodes {

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

/// Throws InvalidFieldException, with the entry and what is allowed, for anything else, and for a name that stands
/// there twice.
std::vector<ListedSlot> readSlotList(const Settings& settings, const char* setting, const ListedNames& names);

} // namespace Trovio::Nodes
