#pragma once

#include "base/Futex.h"

namespace Ostrel {

/// A plain lock of four bytes that enters the kernel only where a thread has to sleep or to be woken.
/// The standard mutex does the same ten times as large and through two calls that are not inlined; a slot has two
/// locks, and a frame looks into thousands of slots.
class FutexLock {
public:
    FutexLock() = default;
    FutexLock(const FutexLock&) = delete;
    FutexLock& operator=(const FutexLock&) = delete;

    void lock()
    {
        if (!tryLock())
            wait();
    }

    bool tryLock()
    {
        std::uint32_t free = Free;
        return _word.compare_exchange_strong(free, Held, std::memory_order_acquire, std::memory_order_relaxed);
    }

    void unlock()
    {
        if (_word.exchange(Free, std::memory_order_release) == Wanted)
            wakeNext();
    }

private:
    enum : std::uint32_t { Free, Held, Wanted }; // Wanted: held, and somebody may sleep

    [[gnu::cold, gnu::noinline]] void wait()
    {
        // Whoever slept takes it as Wanted, for others may sleep still.
        while (_word.exchange(Wanted, std::memory_order_acquire) != Free)
            futexWait(_word, Wanted);
    }

    [[gnu::cold, gnu::noinline]] void wakeNext() { futexWake(_word, 1); }

    FutexWord _word{Free};
};

} // namespace Ostrel
