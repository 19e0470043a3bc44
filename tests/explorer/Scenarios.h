#pragma once

#include "Scheduler.h"
#include <span>

namespace Explorer {

/// A few threads that meet over slots, and what has to hold afterwards, whoever came first.
struct Scenario {
    const char* _name;
    const char* _meaning;
    void (*_run)(Scheduler&);
};

std::span<const Scenario> slotScenarios();
std::span<const Scenario> wiringScenarios();
std::span<const Scenario> poolScenarios();

} // namespace Explorer
