#pragma once

#include "nodes/shared/Clock.h"
#include "nodes/shared/FileDescriptor.h"
#include "trovio/Stepper.h"
#include <atomic>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <thread>

namespace Trovio::Nodes {

/// A node's own thread. It sleeps, without polling, until it is stopped, was told of work, a point in time has come,
/// or a descriptor has something to read or an error to report. Started while a Stepper is active, it goes on only with
/// the stepper's baton.
/// Threads: start() and stop() from the node's start() and stop(); wake() from any thread, and under any lock;
///          the rest only from the worker's own thread.
class Worker {
public:
    /// Throws std::system_error where the system has no descriptor left.
    explicit Worker(Clock& clock);
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Runs body on a new thread; body returns soon after wait() has returned false. What body throws ends the thread
    /// and is handed, as text, to failed. Throws std::system_error where there can be no more threads.
    void start(const char* name, std::function<void()> body, std::function<void(const std::string&)> failed);

    /// Wakes the thread, whatever it waits for, and joins it. Does nothing without start(). It may be started again.
    void stop();

    /// Makes the current or the next wait() return. Never blocks.
    void wake();

    /// Returns when wake() was called since the last wait, `until` is reached on the clock, or one of the descriptors
    /// is ready; true as well for no reason at all. False, at once, when the worker is to stop.
    bool wait(std::optional<double> until, std::span<const int> descriptors = {});

    bool isStopping() const { return _stopping.load(); }

private:
    void sleep(std::optional<double> until, std::span<const int> descriptors);
    void setAlarm(std::optional<double> until);
    void signal();
    void clearSignal();

    FileDescriptor _event;
    const std::unique_ptr<Alarm> _alarm;
    std::optional<double> _until;        // what the alarm is set to; the worker's thread only
    std::atomic<bool> _signalled{false}; // the event was, or is just being, written
    std::atomic<bool> _stopping{false};
    std::unique_ptr<Stepper::Turn> _turn; // null where time is the system's
    std::thread _thread;
};

} // namespace Trovio::Nodes
