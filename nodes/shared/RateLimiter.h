#pragma once

#include "nodes/shared/Clock.h"
#include "osg/RateLimiter.h"
#include <string>

namespace Trovio::Nodes {

/// Lets one event through, and then none until a period has passed: for reports that others can cause at will.
/// Threads: one at a time.
class RateLimiter {
public:
    /// period: seconds.
    explicit RateLimiter(Clock& clock, double period = 1.0) : _clock(clock), _limiter(period) {}

    /// If the event may be reported: what its line ends with, " (and 3 more before it)" after three that could not.
    std::optional<std::string> admit()
    {
        const auto held = _limiter.admit(_clock.now());
        if (!held)
            return std::nullopt;
        return *held == 0 ? std::string() : " (and " + std::to_string(*held) + " more before it)";
    }

private:
    Clock& _clock;
    osg::RateLimiter _limiter;
};

} // namespace Trovio::Nodes
