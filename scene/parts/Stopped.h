#pragma once

#include <functional>

namespace Scenes {

/// Whether to leave off what has begun.
using Stopped = std::function<bool()>;
} // namespace Scenes
