#pragma once

#include "base/LockRank.h"
#include "base/ThreadSafety.h"
#include "tests/explorer/Scheduler.h"
#include <unordered_set>

// Stands in for the product's header of the same name: the same interface, every use a step of the scheduler, and every
// misuse a failure.
namespace Ostrel {

class OSTREL_CAPABILITY("mutex") Mutex {
public:
    explicit Mutex(LockRank rank = LockRank::Unranked) : _rank(rank) { alive().insert(this); }
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    ~Mutex()
    {
        Explorer::expect(!_held && !Explorer::Scheduler::anybodySleepsOn(this), "a lock in use was destroyed");
        alive().erase(this);
    }

    void lock() OSTREL_ACQUIRE() OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        Explorer::Scheduler::step("lock", this);
        Explorer::expect(alive().count(this) != 0, "a lock was taken after it had been destroyed");
        Explorer::expect(!_held || _holder != Explorer::Scheduler::self(), "a thread took a lock that it holds");
        enterRank();
        while (_held)
            Explorer::Scheduler::sleepOn(this);
        hold();
    }

    bool tryLock() OSTREL_TRY_ACQUIRE(true) OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        Explorer::Scheduler::step("try lock", this);
        Explorer::expect(alive().count(this) != 0, "a lock was tried after it had been destroyed");
        if (_held)
            return false;
        enterRank();
        hold();
        return true;
    }

    void unlock() OSTREL_RELEASE() OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        Explorer::expect(_held && _holder == Explorer::Scheduler::self(), "a lock was released by who did not hold it");
        _held = false;
        if (_rank != LockRank::Unranked)
            Explorer::Scheduler::heldRanks() &= ~(1U << static_cast<int>(_rank));
        Explorer::Scheduler::wakeAll(this);
        Explorer::Scheduler::step("unlock", this);
    }

private:
    // By address, so that a lock that is gone is never looked into.
    static std::unordered_set<const Mutex*>& alive()
    {
        static std::unordered_set<const Mutex*> mutexes;
        return mutexes;
    }

    void hold()
    {
        _held = true;
        _holder = Explorer::Scheduler::self();
    }

    void enterRank()
    {
        if (_rank == LockRank::Unranked)
            return;
        unsigned& held = Explorer::Scheduler::heldRanks();
        Explorer::expect((held >> static_cast<int>(_rank)) == 0, "locks were taken against their order");
        held |= 1U << static_cast<int>(_rank);
    }

    const LockRank _rank;
    bool _held = false;
    int _holder = 0;
};

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
