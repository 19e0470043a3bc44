#pragma once

#include "Scheduler.h"
#include <atomic>
#include <cstdint>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

// The product's own semaphore as Ostrel::RealSemaphore, over atomics and a futex whose every use is a step: inside
// Ostrel, what follows finds this std::atomic first. Include it last.
namespace Ostrel {

namespace std {

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
    T fetch_sub(T difference)
    {
        Explorer::Scheduler::step("subtract", this);
        return ::std::exchange(_value, _value - difference);
    }
    bool compare_exchange_weak(T& expected, T desired)
    {
        Explorer::Scheduler::step("compare and exchange", this);
        if (_value == expected) {
            _value = desired;
            return true;
        }
        expected = _value;
        return false;
    }

private:
    T _value;
};

} // namespace std

/// What the kernel does for a semaphore.
inline void steppingFutex(long, const std::atomic<std::uint32_t>* word, int operation, std::uint32_t value,
                          ::std::nullptr_t, ::std::nullptr_t, int)
{
    if (operation == FUTEX_WAKE_PRIVATE) {
        Explorer::Scheduler::step("futex wake", word);
        Explorer::Scheduler::wakeOne(word);
    } else if (word->load() == value) {
        Explorer::Scheduler::sleepOn(word);
    }
}

} // namespace Ostrel

#define Semaphore RealSemaphore
#define syscall steppingFutex
#include "../../platform/base/Semaphore.h"
#undef syscall
#undef Semaphore
