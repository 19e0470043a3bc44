#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Ends the process when nothing happened for a while, with the stacks of all its threads on standard error.
/// Threads: alive() on any; one watchdog at a time, made and destroyed on one thread.
class Watchdog {
public:
    /// Patience in seconds: far longer than anything may take on a machine that is busy with other work.
    explicit Watchdog(std::chrono::seconds patience = std::chrono::seconds(60));
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    ~Watchdog();

    /// Something happened. Only from what has to come to an end: what runs on for ever hides the others' stall.
    void alive() { _events.fetch_add(1, std::memory_order_relaxed); }

private:
    void watch(std::chrono::seconds patience);

    std::atomic<unsigned long> _events{0};
    std::mutex _mutex;
    std::condition_variable _wake;
    bool _done = false;
    std::thread _thread; // last: it uses the others
};
