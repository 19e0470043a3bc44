#pragma once

#include <span>
#include <string_view>

namespace Trovio {

/// The known name that `found` was most likely meant to be; empty if none is near enough. Case does not count.
std::string_view nearestName(std::string_view found, std::span<const std::string_view> known);

} // namespace Trovio
