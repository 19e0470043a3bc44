#pragma once

#include <functional>
#include <string>

namespace Explain {

/// Where a line for a person goes, without its end. Called on the thread that has something to say.
using Say = std::function<void(const std::string& line)>;
} // namespace Explain
