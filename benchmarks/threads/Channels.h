#pragma once

#include "benchmarks/floor/FloorFan.h"
#include "benchmarks/slots/LibraryFan.h"
#include <atomic>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Bench {

/// What the kernel gives: a word, and a system call for each sleep and each wake. Carries nothing else.
class FutexChannel {
public:
    void push()
    {
        _word.store(1);
        syscall(SYS_futex, &_word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    }
    void take()
    {
        while (_word.exchange(0) == 0)
            syscall(SYS_futex, &_word, FUTEX_WAIT_PRIVATE, 0, nullptr, nullptr, 0);
    }

private:
    std::atomic<unsigned> _word{0};
};

/// A fan of one reader whose take() sleeps.
template <Fan F>
class FanChannel {
public:
    void push() { _fan.push(); }
    void take() { _fan.take(0); }

private:
    F _fan{1};
};

using FloorChannel = FanChannel<FloorFan>;
using LibraryChannel = FanChannel<LibraryFan>;

} // namespace Bench
