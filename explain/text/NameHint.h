#pragma once

#include "trovio/messages/NearestName.h"

#include <span>
#include <string>
#include <string_view>

namespace Explain {

using Trovio::nearestName;

/// "; nearest: 'name'", or nothing: the end of a message about an unknown name.
std::string nearestHint(std::string_view found, std::span<const std::string_view> known);

/// "a, b, c"
std::string listed(std::span<const std::string_view> names);
} // namespace Explain
