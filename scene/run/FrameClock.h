#pragma once

namespace Scenes {

/// The time of a frame loop; tests hand in one that they drive by hand.
/// Threads: that of the loop.
class FrameClock {
public:
    virtual ~FrameClock() = default;

    /// Wall-clock seconds, for the time stamps of frames.
    virtual double now() = 0;

    /// Seconds since some fixed moment; never goes back.
    virtual double steady() = 0;

    /// Blocks until `steady` has reached that time or the loop shall stop; returns whether it shall go on.
    virtual bool waitUntil(double time) = 0;
};
} // namespace Scenes
