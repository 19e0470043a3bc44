#pragma once

#include "trovio/Exception.h"

#include <exception>
#include <new>
#include <optional>
#include <string>
#include <system_error>

namespace Explain {

/// What it says; where the system refused a thread, which says only "Resource temporarily unavailable", what helps,
/// too.
inline std::string textOf(const std::exception& error)
{
    const auto* const refused = dynamic_cast<const std::system_error*>(&error);
    if (!refused || refused->code() != std::errc::resource_unavailable_try_again)
        return error.what();
    return std::string("the system gives no further thread, or no memory for one (") + error.what() +
           "); allow more with ulimit -u and ulimit -v, or with TasksMax and MemoryMax of a service";
}

/// Runs `action` and returns the text of what it threw, if it threw. The framework's exceptions are no std::exception.
/// That memory ran out is no failure of the action, and passes.
template <class Action>
std::optional<std::string> failureOf(Action&& action)
{
    try {
        action();
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        return textOf(error);
    } catch (const Trovio::Exception& error) {
        return error.getMessage();
    }
}
} // namespace Explain
