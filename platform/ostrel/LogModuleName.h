#pragma once

namespace Ostrel {

/// The module under which the runtime and what extends it write to the log.
inline constexpr const char* LogModuleName = "Ostrel";

} // namespace Ostrel
