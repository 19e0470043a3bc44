#pragma once

#include "benchmarks/harness/Allocations.h"
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace Bench {

/// What one repetition of one contender found: a figure for each metric of the workload.
struct Sample {
    std::vector<double> _figures;
    std::optional<double> _allocations; // an operation; nothing where none are counted
};

/// Makes the compiler believe that somebody looks at the value.
template <class T>
void keep(const T& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

using Clock = std::chrono::steady_clock;

inline double nanosecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

/// The value below which the given share of the values lies; reorders them.
inline double quantile(std::vector<double>& values, double share)
{
    const auto place = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

/// Repeats an operation in short batches and gives the nanoseconds that one takes in the median batch: a batch in
/// which another process got the core does not count. between: is done after each batch, and not measured.
template <class Operation>
Sample sampleBatches(
    std::size_t perBatch, Operation operation, const std::function<void()>& between = [] {})
{
    constexpr std::size_t batches = 25;
    std::vector<double> times(batches);
    double allocated = 0;
    for (double& time : times) {
        const auto before = allocations();
        const auto start = Clock::now();
        for (std::size_t i = 0; i < perBatch; ++i)
            operation();
        time = nanosecondsSince(start) / static_cast<double>(perBatch);
        allocated += static_cast<double>(allocations() - before);
        between();
    }
    return {{quantile(times, 0.5)}, allocated / static_cast<double>(batches * perBatch)};
}

} // namespace Bench
