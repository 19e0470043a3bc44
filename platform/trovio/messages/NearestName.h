#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Trovio {

/// The known name that `found` was most likely meant to be; empty if none is near enough. Case does not count.
std::string_view nearestName(std::string_view found, std::span<const std::string_view> known);

/// "; nearest: 'name'", or nothing: the end of a message about an unknown name. The names are written as they are.
std::string nearestHint(std::string_view found, const std::vector<std::string>& known);

} // namespace Trovio
