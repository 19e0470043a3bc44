#pragma once

#include "tests/explorer/Scheduler.h"
#include <atomic>
#include <unordered_set>

// Stands in for the product's header of the same name: every use of a word is a step of the scheduler, and every misuse
// a failure. The lock, the mutex and the semaphore over it are the product's own.
namespace Ostrel {

class FutexWord {
public:
    explicit FutexWord(std::uint32_t value) : _value(value) { alive().insert(this); }
    FutexWord(const FutexWord&) = delete;
    FutexWord& operator=(const FutexWord&) = delete;
    ~FutexWord()
    {
        Explorer::expect(!Explorer::Scheduler::anybodySleepsOn(this), "a lock or semaphore was destroyed in use");
        alive().erase(this);
    }

    std::uint32_t load() const
    {
        step("load");
        return _value;
    }
    std::uint32_t fetch_add(std::uint32_t difference)
    {
        step("add");
        return std::exchange(_value, _value + difference);
    }
    std::uint32_t exchange(std::uint32_t desired, std::memory_order)
    {
        step("exchange");
        return std::exchange(_value, desired);
    }
    bool compare_exchange_strong(std::uint32_t& expected, std::uint32_t desired, std::memory_order, std::memory_order)
    {
        step("compare and exchange");
        const std::uint32_t wanted = std::exchange(expected, _value);
        if (_value != wanted)
            return false;
        _value = desired;
        return true;
    }

private:
    // By address, so that a word that is gone is never looked into.
    static std::unordered_set<const FutexWord*>& alive()
    {
        static std::unordered_set<const FutexWord*> words;
        return words;
    }
    void step(const char* what) const
    {
        Explorer::Scheduler::step(what, this);
        Explorer::expect(alive().count(this) != 0, "a lock or semaphore was used after it had been destroyed");
    }

    std::uint32_t _value;
};

inline void futexWait(FutexWord& word, std::uint32_t value)
{
    if (word.load() == value)
        Explorer::Scheduler::sleepOn(&word);
}

/// Any of the sleepers, which is more than the kernel does. The word may be gone by now.
inline void futexWake(FutexWord& word, std::uint32_t sleepers)
{
    for (std::uint32_t i = 0; i < sleepers; ++i) {
        Explorer::Scheduler::step("wake", &word);
        Explorer::Scheduler::wakeOne(&word);
    }
}

} // namespace Ostrel
