#pragma once

#include "nodes/shared/Clock.h"
#include <cstdint>
#include <optional>
#include <string>

namespace Trovio::Nodes {

/// Lets one event through, and then none until a period has passed: for reports that others can cause at will.
/// Threads: one at a time.
class RateLimiter {
public:
    /// period: seconds.
    explicit RateLimiter(Clock& clock, double period = 1.0) : _clock(clock), _period(period) {}

    /// If the event may be reported: what its line ends with, " (and 3 more before it)" after three that could not.
    std::optional<std::string> admit()
    {
        const double now = _clock.now();
        if (_next && now < *_next) {
            ++_withheld;
            return std::nullopt;
        }
        std::string more = _withheld == 0 ? "" : " (and " + std::to_string(_withheld) + " more before it)";
        _next = now + _period;
        _withheld = 0;
        return more;
    }

private:
    Clock& _clock;
    const double _period;
    std::optional<double> _next;
    std::uint64_t _withheld = 0;
};

} // namespace Trovio::Nodes
