#pragma once

#include "base/Mutex.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <thread>

namespace Monitor {

/// Does what takes time, one after the other, on a thread that starts with the first.
/// Threads: any.
class WorkThread {
public:
    static constexpr std::size_t MaxWaiting = 16;
    using Work = std::function<void()>;

    explicit WorkThread(const char* name) : _name(name) {} // of up to 15 bytes
    ~WorkThread() { end(); }
    WorkThread(const WorkThread&) = delete;
    WorkThread& operator=(const WorkThread&) = delete;

    /// False, and nothing is done, where too many wait, or after end(). Throws std::system_error where the system gives
    /// no thread.
    bool add(Work work) OSTREL_EXCLUDES(_lock);
    /// Waits for the work that is being done, which sees isOver(), and forgets the rest.
    void end() OSTREL_EXCLUDES(_lock);
    bool isOver() const { return _isOver; }

private:
    void run() OSTREL_EXCLUDES(_lock);
    bool takeNext(Work& next) OSTREL_EXCLUDES(_lock);

    const char* const _name;
    std::atomic<bool> _isOver{false};
    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::condition_variable_any _news;
    std::deque<Work> _waiting OSTREL_GUARDED_BY(_lock);
    std::thread _thread OSTREL_GUARDED_BY(_lock);
};
} // namespace Monitor
