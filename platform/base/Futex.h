#pragma once

#include <atomic>
#include <cstdint>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Ostrel {

using FutexWord = std::atomic<std::uint32_t>;
static_assert(sizeof(FutexWord) == sizeof(std::uint32_t) && FutexWord::is_always_lock_free);

/// Sleeps until a wake; returns at once when the word is not `value`. May return early: look again.
inline void futexWait(FutexWord& word, std::uint32_t value)
{
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
}

/// Wakes at most so many of those who sleep on the word, who slept longest first.
inline void futexWake(FutexWord& word, std::uint32_t sleepers)
{
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, sleepers, nullptr, nullptr, 0);
}

} // namespace Ostrel
