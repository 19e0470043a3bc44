#pragma once

#include "trovio/Settings.h"
#include <string>
#include <vector>

namespace Trovio::Nodes {

/// One entry of the settings in and out: "/wand/position Vec3f".
struct OscAddress {
    std::string _address;  // with its leading '/'
    std::string _typeName; // of a slot value type

    /// The label of its slot.
    std::string getLabel() const { return _address.substr(1); }
};

/// Whether a slot may have that address.
bool isOscAddress(std::string_view text);

/// Reads "/wand/position Vec3f, /cloud Vec3f[]". Throws InvalidFieldException, with the entry and what is allowed, for
/// anything else, and for an address that is listed twice.
std::vector<OscAddress> readOscAddresses(const Settings& settings, const char* name);

} // namespace Trovio::Nodes
