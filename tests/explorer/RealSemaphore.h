#pragma once

#include "Scheduler.h"
#include "base/ThreadSafety.h"
#include <atomic>
#include <cstdint>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

// The product's own semaphore and lock as Ostrel::RealSemaphore and Ostrel::FutexLock, over atomics and a futex whose
// every use is a step: inside Ostrel, what follows finds this std::atomic first. Include it last.
namespace Ostrel {

namespace std {

using ::std::memory_order;
using ::std::memory_order_acquire;
using ::std::memory_order_relaxed;
using ::std::memory_order_release;
using ::std::uint32_t;

template <class T>
class atomic {
public:
    static constexpr bool is_always_lock_free = true;

    atomic(T value) : _value(value) {}

    T load() const
    {
        Explorer::Scheduler::step("load", this);
        return _value;
    }
    T fetch_add(T difference)
    {
        Explorer::Scheduler::step("add", this);
        return ::std::exchange(_value, _value + difference);
    }
    T exchange(T desired, memory_order)
    {
        Explorer::Scheduler::step("exchange", this);
        return ::std::exchange(_value, desired);
    }
    bool compare_exchange_strong(T& expected, T desired, memory_order, memory_order)
    {
        Explorer::Scheduler::step("compare and exchange", this);
        const T before = ::std::exchange(expected, _value);
        if (_value != before)
            return false;
        _value = desired;
        return true;
    }

private:
    T _value;
};

} // namespace std

/// What the kernel does for them.
inline void steppingFutex(long, const std::atomic<std::uint32_t>* word, int operation, std::uint32_t value,
                          ::std::nullptr_t, ::std::nullptr_t, int)
{
    if (operation == FUTEX_WAKE_PRIVATE) {
        Explorer::Scheduler::step("futex wake", word);
        for (std::uint32_t i = 0; i < value; ++i)
            Explorer::Scheduler::wakeOne(word);
    } else if (word->load() == value) {
        Explorer::Scheduler::sleepOn(word);
    }
}

} // namespace Ostrel

#define Semaphore RealSemaphore
#define syscall steppingFutex
#include "../../platform/base/FutexLock.h"
#include "../../platform/base/Semaphore.h"
#undef syscall
#undef Semaphore
