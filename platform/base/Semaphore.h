#pragma once

#include <atomic>
#include <cstdint>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Ostrel {

/// A counting semaphore that enters the kernel only where a thread has to sleep or to be woken.
/// Posting and waking are two steps, so that a poster can leave its lock before the woken thread wants it.
/// Threads: any thread, any operation.
///
/// The standard counting semaphore of this compiler was tried: each release from zero makes a system call.
class Semaphore {
public:
    Semaphore() = default;
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// Adds a token. True if a thread may be asleep: the caller then owes one wake().
    [[nodiscard]] bool post()
    {
        _tokens.fetch_add(1);
        return _sleepers.load() != 0;
    }

    void wake() { futex(FUTEX_WAKE_PRIVATE, 1); }

    /// Takes a token, and blocks until there is one.
    void wait()
    {
        if (tryTake())
            return;
        // Announced before the last look: a poster either sees this sleeper, or its token is seen here.
        _sleepers.fetch_add(1);
        while (!tryTake())
            futex(FUTEX_WAIT_PRIVATE, 0);
        _sleepers.fetch_sub(1);
    }

private:
    bool tryTake()
    {
        std::uint32_t tokens = _tokens.load();
        while (tokens != 0)
            if (_tokens.compare_exchange_weak(tokens, tokens - 1))
                return true;
        return false;
    }

    // A wait returns at once when the word is no longer `value`, and may return early; wait() looks again.
    void futex(int operation, std::uint32_t value)
    {
        static_assert(sizeof(_tokens) == sizeof(std::uint32_t) && std::atomic<std::uint32_t>::is_always_lock_free);
        syscall(SYS_futex, &_tokens, operation, value, nullptr, nullptr, 0);
    }

    std::atomic<std::uint32_t> _tokens{0};
    std::atomic<std::uint32_t> _sleepers{0};
};

} // namespace Ostrel
