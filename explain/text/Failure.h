#pragma once

#include "trovio/Exception.h"

#include <exception>
#include <new>
#include <optional>
#include <string>

namespace Explain {

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
        return error.what();
    } catch (const Trovio::Exception& error) {
        return error.getMessage();
    }
}
} // namespace Explain
