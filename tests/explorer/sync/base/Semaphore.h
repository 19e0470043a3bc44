#pragma once

#include "base/ThreadSafety.h"
#include "tests/explorer/Scheduler.h"
#include <cstdint>

// Stands in for the product's header of the same name: the same promises, kept no better than they are made. Who sleeps
// is not told of a token until somebody calls wake().
namespace Ostrel {

class Semaphore {
public:
    Semaphore() = default;
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;
    ~Semaphore()
    {
        Explorer::expect(!Explorer::Scheduler::anybodySleepsOn(this), "a semaphore was destroyed under a sleeper");
    }

    [[nodiscard]] std::uint32_t post()
    {
        ++_tokens;
        if (_called == _announced)
            return 0;
        ++_called;
        return 1;
    }

    void wake(std::uint32_t wakes)
    {
        for (std::uint32_t i = 0; i < wakes; ++i) {
            Explorer::Scheduler::step("wake", this);
            Explorer::Scheduler::wakeOne(this);
        }
    }

    template <class Lock>
    void wait(Lock& lock) OSTREL_REQUIRES(lock)
    {
        while (_tokens == 0) {
            ++_announced;
            const unsigned called = _called;
            lock.unlock();
            Explorer::Scheduler::step("wait", this);
            if (_called == called)
                Explorer::Scheduler::sleepOn(this);
            lock.lock();
        }
        --_tokens;
    }

private:
    unsigned _tokens = 0;
    unsigned _announced = 0; // so many went to sleep
    unsigned _called = 0;    // so many of them are woken, or will be
};

} // namespace Ostrel
