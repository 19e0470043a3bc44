#pragma once

#include <cstddef>
#include <vector>

namespace Monitor {

using Bytes = std::vector<std::byte>;

} // namespace Monitor
