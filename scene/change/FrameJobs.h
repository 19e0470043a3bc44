#pragma once

#include "base/Mutex.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <stdexcept>

namespace Scenes {

/// Why a job was not taken: the run has ended, or too many wait.
class JobRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Jobs that other threads hand to the scene thread, which does them between two frames.
/// Threads: run() from any thread but the scene's, work() and end() from the scene thread.
class FrameJobs {
public:
    static constexpr std::size_t MaxWaiting = 16;

    using Action = std::function<void()>;
    /// Has the job done, and blocks until it is; `wait`, which must not throw, is called several times a second
    /// meanwhile, on the thread that waits. What the job throws comes out here. Throws JobRefused where it is not
    /// taken, and then it never runs.
    void run(const Action& job, const Action& wait = nullptr) OSTREL_EXCLUDES(_lock);

    /// Between two frames: does what waits. Costs next to nothing where nothing does. True where something did. What a
    /// job throws is for who waits for it; that memory ran out is thrown here, too, for what was begun is not whole.
    bool work() OSTREL_EXCLUDES(_lock);
    /// No more frames come: refuses what waits, and what comes from now on.
    void end() OSTREL_EXCLUDES(_lock);

private:
    struct Job;
    void take(Job& job) OSTREL_EXCLUDES(_lock);
    bool waitFor(const Job& job) OSTREL_EXCLUDES(_lock);
    void finish(const std::deque<Job*>& jobs) OSTREL_EXCLUDES(_lock);

    std::atomic<bool> _isWanted{false};
    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::condition_variable_any _news;
    std::deque<Job*> _waiting OSTREL_GUARDED_BY(_lock); // each on the stack of who waits for it
    bool _isOver OSTREL_GUARDED_BY(_lock) = false;
};
} // namespace Scenes
