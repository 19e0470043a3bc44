#include "scene/change/FrameJobs.h"

#include <exception>
#include <new>

namespace Scenes {

struct FrameJobs::Job {
    const std::function<void()>& _work;
    std::exception_ptr _failure{};
    bool _isDone = false;
};

void FrameJobs::run(const std::function<void()>& work)
{
    Job job{work};
    {
        const Ostrel::LockGuard guard(_lock);
        if (_isOver)
            throw JobRefused("the run has ended");
        if (_waiting.size() >= MaxWaiting)
            throw JobRefused("too many changes wait for the scene; try again");
        _waiting.push_back(&job);
        _isWanted.store(true, std::memory_order_release);
        while (!job._isDone)
            _news.wait(_lock);
    }
    if (job._failure)
        std::rethrow_exception(job._failure);
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
