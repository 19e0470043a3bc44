#pragma once

#include "base/LockRank.h"
#include "base/ThreadSafety.h"
#include <mutex>

namespace Ostrel {

/// A plain, non-recursive mutex that the compiler's thread-safety analysis knows and whose rank debug builds check.
class OSTREL_CAPABILITY("mutex") Mutex {
public:
    explicit Mutex(LockRank rank = LockRank::Unranked) : _rank(rank) {}
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() OSTREL_ACQUIRE()
    {
        HeldRanks::acquire(_rank);
        _mutex.lock();
    }

    /// Takes the mutex if nobody holds it. Not by the thread that holds it already.
    bool tryLock() OSTREL_TRY_ACQUIRE(true)
    {
        if (!_mutex.try_lock())
            return false;
        HeldRanks::acquire(_rank);
        return true;
    }

    void unlock() OSTREL_RELEASE()
    {
        _mutex.unlock();
        HeldRanks::release(_rank);
    }

    /// For condition variables (std::condition_variable_any waits on the Mutex itself, and needs no handle).
    std::mutex& native() { return _mutex; }

private:
    std::mutex _mutex;
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
