#pragma once

#include "tests/explorer/Scheduler.h"

// Stands in for the product's header of the same name: every use is a step of the scheduler.
namespace Ostrel {

class Flag {
public:
    Flag() = default;
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

    bool isSet() const
    {
        Explorer::Scheduler::step("ask", this);
        return _set;
    }
    void set(bool value)
    {
        Explorer::Scheduler::step("set", this);
        _set = value;
    }

private:
    bool _set = false;
};

} // namespace Ostrel
