#include "benchmarks/instructions/Operation.h"

#include <cstdio>
#include <string_view>

/// The frame in which instructions are counted: one call for each operation.
extern "C" [[gnu::noinline]] void benchMeasured(const std::function<void()>& run)
{
    run();
    asm volatile("" : : : "memory"); // so that the call above returns here
}

/// Prints the names of the operations, one a line, and runs each of them once in benchMeasured().
int main()
{
    Bench::Operations operations;
    Bench::addSlotOperations(operations);
    Bench::addRoadOperations(operations);
    Bench::addOscOperations(operations);
    Bench::addFilterOperations(operations);
    for (const Bench::Operation& operation : operations) {
        // The first turns bind symbols and fill pools.
        for (int i = 0; i < 3; ++i) {
            operation._prepare();
            operation._run();
        }
        operation._prepare();
        std::puts(operation._name.c_str());
        benchMeasured(operation._run);
    }
}
