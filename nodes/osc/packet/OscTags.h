#pragma once

#include <string>
#include <string_view>

// The type tags of a message, as texts about it show them.
namespace Trovio::Nodes {

/// "fff", "ffff…" where there are many; "no arguments".
std::string shortenOscTags(std::string_view tags);

/// "(fff)", "no arguments".
std::string describeOscTags(std::string_view tags);

/// The slot value type that takes such arguments and loses nothing of them: "Vec3f" for "fff", "Vec3d" for "iii",
/// "Float[]" for seven f. Empty if no type does, and for no arguments.
std::string guessSlotType(std::string_view tags);

} // namespace Trovio::Nodes
