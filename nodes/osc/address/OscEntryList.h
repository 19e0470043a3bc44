#pragma once

#include "nodes/osc/address/OscEntry.h"
#include "trovio/Settings.h"
#include <string_view>

namespace Trovio::Nodes {

/// How many entries of a list may have '*' in their addresses: messages of addresses that are not known yet are
/// compared with each of them.
constexpr std::size_t MaxOscStars = 16;

/// How many items may stand behind an address.
constexpr std::size_t MaxOscItems = 64;

/// Messages of `in`, which may be of any address and have arguments that are skipped, or of `out`.
enum class OscDirection { In, Out };

/// Whether a slot may have that address.
bool isOscAddress(std::string_view text);

/// Reads "/wand/position Vec3f, /tracker i:3 Vec3f:position Rotation:rotation". Throws InvalidFieldException, with the
/// entry, the character and what is allowed there, for anything else; for a label that two slots would have; and for
/// more than MaxListedSlots slots.
std::vector<OscEntry> readOscEntries(const Settings& settings, const char* setting, OscDirection direction);

} // namespace Trovio::Nodes
