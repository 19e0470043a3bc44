#pragma once

#include "base/Futex.h"
#include "base/ThreadSafety.h"

namespace Ostrel {

/// A count of tokens that a lock of its owner guards, and a place to sleep at while there is none.
/// Whoever posts holds that lock anyway, to store what the token stands for, so the count needs no atomic operation of
/// its own. Waking is a step of its own, so that a poster can leave the lock before the woken thread wants it.
/// Threads: any; post() and wait() under the owner's lock, wake() without it.
///
/// The standard counting semaphore of this compiler was tried: each release from zero makes a system call.
class Semaphore {
public:
    Semaphore() = default;
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// Adds a token. Returns how many wakes the caller owes for it once it has left the lock: 1 or 0.
    [[nodiscard]] std::uint32_t post()
    {
        ++_tokens;
        return _sleepers == 0 ? 0 : callOne();
    }

    void wake(std::uint32_t wakes) { futexWake(_calls, wakes); }

    /// Takes a token, and sleeps until there is one. The lock is held before and after, and left for the sleep.
    template <class Lock>
    void wait(Lock& lock) OSTREL_REQUIRES(lock)
    {
        while (_tokens == 0)
            sleep(lock);
        --_tokens;
    }

    /// Takes a token if there is one. Under the owner's lock, too.
    bool tryWait()
    {
        if (_tokens == 0)
            return false;
        --_tokens;
        return true;
    }

private:
    /// Whoever announced a sleep and is not asleep yet sees that the word has changed, and looks again.
    std::uint32_t callOne()
    {
        --_sleepers;
        _calls.fetch_add(1);
        return 1;
    }

    // A thread that wakes by itself leaves its announcement behind: it costs one wake too many, and none is missed.
    template <class Lock>
    [[gnu::cold, gnu::noinline]] void sleep(Lock& lock) OSTREL_REQUIRES(lock)
    {
        ++_sleepers;
        const std::uint32_t calls = _calls.load();
        lock.unlock();
        futexWait(_calls, calls);
        lock.lock();
    }

    std::uint32_t _tokens = 0;
    std::uint32_t _sleepers = 0; // announced and not called yet: at least as many as sleep without a wake on its way
    FutexWord _calls{0};
};

} // namespace Ostrel
