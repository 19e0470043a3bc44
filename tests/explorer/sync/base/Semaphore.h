#pragma once

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
    ~Semaphore() { Explorer::expect(_sleepers == 0, "a semaphore was destroyed under a sleeper"); }

    [[nodiscard]] bool post()
    {
        Explorer::Scheduler::step("post", this);
        ++_tokens;
        return _sleepers != 0;
    }

    void wake()
    {
        Explorer::Scheduler::step("wake", this);
        Explorer::Scheduler::wakeOne(this);
    }

    void wait()
    {
        Explorer::Scheduler::step("wait", this);
        ++_sleepers;
        while (_tokens == 0)
            Explorer::Scheduler::sleepOn(this);
        --_sleepers;
        --_tokens;
    }

private:
    unsigned _tokens = 0;
    unsigned _sleepers = 0;
};

} // namespace Ostrel
