#pragma once

#include "trovio/Time.h"
#include <array>
#include <cstddef>
#include <optional>

namespace Trovio::Nodes {

/// How far another clock is ahead of ours, from questions and their answers. The best of the last few counts: the one
/// that was under way for the shortest time, unless it is so old that the clocks may have drifted apart since. A clock
/// that was set, here or there, contradicts what was known of it, which is then forgotten.
/// A plain value.
class ClockOffset {
public:
    struct Estimate {
        double _offset; // seconds that the other clock is ahead
        double _bound;  // seconds by which that may be wrong at most
    };

    /// Seconds after the last answer from which nothing is claimed any more: the other clock may have been set.
    static constexpr double Lifetime = 60.0;

    /// Seconds by which two clocks may drift apart meanwhile.
    static double driftIn(double seconds);

    /// A question that left at `asked`, came at `received` and was answered at `answered` on the other clock, and whose
    /// answer came at `arrived`; all in seconds since 1970. False, and nothing is noted, if that cannot be.
    bool note(double asked, double received, double answered, double arrived);

    /// Nothing before the first answer, and nothing when the last one is too old.
    std::optional<Estimate> estimate(double now) const;

    /// Seconds since the last answer, if there was one.
    std::optional<double> age(double now) const;

private:
    struct Probe {
        double _offset, _bound, _time;
    };
    std::array<Probe, 8> _probes{};
    std::size_t _count = 0; // noted since the clock was set last
};

} // namespace Trovio::Nodes
