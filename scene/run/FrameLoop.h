#pragma once

#include "scene/run/FrameClock.h"

#include <cstdint>
#include <functional>

namespace Scenes {

/// When a frame loop ends by itself; whichever comes first.
struct LoopLimits {
    double _seconds;
    std::uint64_t _frames;
};

/// Calls a function at a steady rate. Frames that come too late are left out, never made up for in a burst.
/// Ownership: refers to the clock, which must live as long.
/// Threads:   the scene thread, on which run() calls the function.
class FrameLoop {
public:
    /// `rate` in frames per second, above 0.
    FrameLoop(FrameClock& clock, double rate, const LoopLimits& limits)
        : _clock(clock), _rate(rate), _nextRate(rate), _limits(limits)
    {
    }

    /// From the frame that runs on.
    void setRate(double rate) { _nextRate = rate; }

    /// Runs frames, the first one at once, until a limit is reached, the clock says stop or `frame` returns false.
    /// Blocks. `frame` gets the frame's wall-clock time in seconds.
    void run(const std::function<bool(double now)>& frame);

    std::uint64_t frames() const { return _frames; }

    /// Frames left out because the ones before took too long.
    std::uint64_t skipped() const { return _skipped; }

private:
    FrameClock& _clock;
    double _rate, _nextRate;
    const LoopLimits _limits;
    std::uint64_t _frames = 0;
    std::uint64_t _skipped = 0;
};
} // namespace Scenes
