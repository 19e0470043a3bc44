#include "scene/change/FrameJobs.h"

#include <chrono>
#include <exception>
#include <new>

namespace Scenes {

namespace {

constexpr auto waitInterval = std::chrono::milliseconds(200);
} // namespace

struct FrameJobs::Job {
    const Action& _work;
    std::exception_ptr _failure{};
    bool _isDone = false;
};

void FrameJobs::run(const Action& work, const Action& wait)
{
    Job job{work};
    take(job);
    while (!waitFor(job))
        if (wait)
            wait();
    if (job._failure)
        std::rethrow_exception(job._failure);
}

void FrameJobs::take(Job& job)
{
    const Ostrel::LockGuard guard(_lock);
    if (_isOver)
        throw JobRefused("the run has ended");
    if (_waiting.size() >= MaxWaiting)
        throw JobRefused("too many changes wait for the scene; try again");
    _waiting.push_back(&job);
    _isWanted.store(true, std::memory_order_release);
}

/// False where the job is not done after a while.
bool FrameJobs::waitFor(const Job& job)
{
    const Ostrel::LockGuard guard(_lock);
    const auto end = std::chrono::steady_clock::now() + waitInterval;
    while (!job._isDone)
        if (_news.wait_until(_lock, end) == std::cv_status::timeout)
            return job._isDone;
    return true;
}

bool FrameJobs::work()
{
    if (!_isWanted.load(std::memory_order_acquire))
        return false;
    std::deque<Job*> taken;
    {
        const Ostrel::LockGuard guard(_lock);
        taken.swap(_waiting);
        _isWanted.store(false, std::memory_order_relaxed);
    }
    bool isOutOfMemory = false;
    for (Job* const job : taken) {
        try {
            job->_work();
        } catch (const std::bad_alloc&) {
            job->_failure = std::current_exception();
            isOutOfMemory = true;
        } catch (...) {
            job->_failure = std::current_exception();
        }
    }
    finish(taken);
    if (isOutOfMemory)
        throw std::bad_alloc();
    return !taken.empty();
}

void FrameJobs::end()
{
    std::deque<Job*> refused;
    {
        const Ostrel::LockGuard guard(_lock);
        _isOver = true;
        refused.swap(_waiting);
    }
    for (Job* const job : refused)
        job->_failure = std::make_exception_ptr(JobRefused("the run has ended"));
    finish(refused);
}

// Who waits wakes up and takes its job away once the lock is free.
void FrameJobs::finish(const std::deque<Job*>& jobs)
{
    const Ostrel::LockGuard guard(_lock);
    for (Job* const job : jobs)
        job->_isDone = true;
    _news.notify_all();
}
} // namespace Scenes
