#pragma once

#include "trovio/Time.h"
#include <memory>

namespace Trovio::Nodes {

/// Wakes a thread at a point in time: its descriptor becomes readable then. Belongs to one thread.
class Alarm {
public:
    virtual ~Alarm() = default;
    virtual int getDescriptor() const = 0;

    /// Goes off once `seconds` on the clock's scale is reached, at once if that is past. Replaces what was set before.
    virtual void set(double seconds) = 0;
    virtual void clear() = 0;
};

/// The time as a node sees it; tests hand in one that they move by hand.
/// Threads: any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// Seconds since some moment in the past. Never goes back, whatever is done to the date.
    virtual double now() const = 0;

    /// The date, for time stamps.
    virtual Time wallTime() const = 0;

    /// Throws std::system_error where the system has no descriptor left. Must not outlive the clock.
    virtual std::unique_ptr<Alarm> createAlarm() = 0;

    /// The system's clock; while a Stepper is active, one that says its time: nodes that are made then live by that.
    static Clock& system();
};

} // namespace Trovio::Nodes
