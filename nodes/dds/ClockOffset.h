#pragma once

#include <array>
#include <cstddef>
#include <optional>

namespace Trovio::Nodes {

/// How far another clock is ahead of ours, from questions and their answers. The best of the last few counts: the one
/// that was under way for the shortest time, unless it is so old that the clocks may have drifted apart since.
class ClockOffset {
public:
    struct Estimate {
        double _offset; // seconds that the other clock is ahead
        double _bound;  // seconds by which that may be wrong at most
    };

    /// A question that left at `asked`, came at `received` and was answered at `answered` on the other clock, and whose
    /// answer came at `arrived`; all in seconds. False, and nothing is noted, if that cannot be.
    bool note(double asked, double received, double answered, double arrived);

    /// Nothing before the first answer.
    std::optional<Estimate> estimate(double now) const;

private:
    struct Probe {
        double _offset, _bound, _time;
    };
    std::array<Probe, 8> _probes{};
    std::size_t _count = 0; // that were ever noted
};

} // namespace Trovio::Nodes
