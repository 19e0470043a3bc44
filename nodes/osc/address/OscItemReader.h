#pragma once

#include "nodes/osc/address/OscEntry.h"
#include <optional>
#include <string_view>

namespace Trovio::Nodes {

/// Longest name of a slot and longest fixed text, in bytes.
constexpr std::size_t MaxOscName = 255;

/// An item with what it adds to labels.
struct OscWrittenItem {
    OscItem _item;
    std::string _label{};    // the name of a slot, the value of a fixed argument
    bool _takesRest = false; // of the arguments
};

/// Reads what stands between two blanks: "Vec3f:position", "i:3", "s:\"a text\"". Nothing for anything else.
std::optional<OscWrittenItem> readOscItem(std::string_view word);

/// How long the first word of a text is: up to a blank or a comma that stands in no quotes. A quotation that does not
/// end takes all.
std::size_t measureOscItem(std::string_view text);

/// What items there are.
std::string describeOscItems();

/// Whether all characters may stand in addresses and names.
bool isOscName(std::string_view text);

} // namespace Trovio::Nodes
