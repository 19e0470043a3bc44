#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Bench {

/// What is counted: one run, after a prepare that is not counted.
struct Operation {
    std::string _name;
    std::function<void()> _run;
    std::function<void()> _prepare = [] {};
};

using Operations = std::vector<Operation>;

void addSlotOperations(Operations& operations);
void addRoadOperations(Operations& operations);
void addOscOperations(Operations& operations);
void addFilterOperations(Operations& operations);

} // namespace Bench
