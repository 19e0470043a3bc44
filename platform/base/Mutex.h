#pragma once

#include "base/FutexLock.h"
#include "base/LockEvents.h"
#include "base/LockRank.h"
#include "base/ThreadSafety.h"

namespace Ostrel {

/// A plain, non-recursive mutex that the compiler's thread-safety analysis knows and whose rank debug builds check.
/// std::condition_variable_any waits on it.
class OSTREL_CAPABILITY("mutex") Mutex {
public:
    explicit Mutex(LockRank rank = LockRank::Unranked) : _rank(rank) {}
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
#ifdef OSTREL_THREAD_SANITIZER
    ~Mutex()
    {
        OSTREL_LOCK_EVENT(destroy, this, 0);
    }
#endif

    void lock() OSTREL_ACQUIRE()
    {
        HeldRanks::acquire(_rank);
        OSTREL_LOCK_EVENT(pre_lock, this, 0);
        _lock.lock();
        OSTREL_LOCK_EVENT(post_lock, this, 0, 0);
    }

    /// Takes the mutex if nobody holds it, not even the calling thread.
    bool tryLock() OSTREL_TRY_ACQUIRE(true)
    {
        OSTREL_LOCK_EVENT(pre_lock, this, __tsan_mutex_try_lock);
        const bool taken = _lock.tryLock();
        OSTREL_LOCK_EVENT(post_lock, this, taken ? __tsan_mutex_try_lock : __tsan_mutex_try_lock_failed, 0);
        if (taken)
            HeldRanks::acquire(_rank);
        return taken;
    }

    /// Reads nothing of the mutex once it is free: whoever waited for it may destroy it at once.
    void unlock() OSTREL_RELEASE()
    {
        HeldRanks::release(_rank);
        OSTREL_LOCK_EVENT(pre_unlock, this, 0);
        _lock.unlock();
        OSTREL_LOCK_EVENT(post_unlock, this, 0);
    }

private:
    FutexLock _lock;
    [[maybe_unused]] const LockRank _rank;
};

/// Holds a Mutex for a scope.
class OSTREL_SCOPED_CAPABILITY LockGuard {
public:
    explicit LockGuard(Mutex& mutex) OSTREL_ACQUIRE(mutex) : _mutex(mutex) { _mutex.lock(); }
    ~LockGuard() OSTREL_RELEASE() { _mutex.unlock(); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    Mutex& _mutex;
};

} // namespace Ostrel
