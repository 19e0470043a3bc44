#pragma once

#include <span>
#include <string>
#include <string_view>

namespace Host {

/// The known name that `found` was most likely meant to be; empty if none is near enough. Case does not count.
std::string_view nearestName(std::string_view found, std::span<const std::string_view> known);

/// "; nearest: 'name'", or nothing: the end of a message about an unknown name.
std::string nearestHint(std::string_view found, std::span<const std::string_view> known);

/// "a, b, c"
std::string listed(std::span<const std::string_view> names);
} // namespace Host
