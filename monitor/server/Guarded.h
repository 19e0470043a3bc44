#pragma once

#include <functional>

namespace Monitor {

/// Does it. What it throws, such as for want of memory, is a warning in the log and ends nothing else; whether it threw
/// nothing. Any thread.
bool guarded(const char* what, const std::function<void()>& work) noexcept;
} // namespace Monitor
