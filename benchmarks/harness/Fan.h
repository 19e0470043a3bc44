#pragma once

#include "benchmarks/harness/Workload.h"
#include <cstddef>
#include <memory>

namespace Bench {

/// One writer with a number of readers of one value: what every contender of the slots looks like.
/// push() hands the value to all readers; take(i) is only called when reader i has one, and may wait for it; poll(i)
/// takes the value if there is one.
template <class F>
concept Fan = requires(F fan, std::size_t i)
{
    F(i);
    fan.push();
    fan.take(i);
    bool(fan.poll(i));
};

/// Three floats and the time at which they were true: what travels where nothing else is said.
struct Record {
    double _time;
    float _value[3];
};

inline constexpr Record someRecord{1e9, {0.1F, 1.6F, -0.3F}};

/// Operations of about a fifth of a millisecond make a batch.
template <Fan F>
void addPush(Workload& workload, const char* name, std::size_t readers, std::size_t perBatch)
{
    workload.add(
        name, [perBatch, fan = std::make_shared<F>(readers)] { return sampleBatches(perBatch, [&] { fan->push(); }); });
}

template <Fan F>
void addPushAndTake(Workload& workload, const char* name, std::size_t readers, std::size_t perBatch)
{
    workload.add(name, [readers, perBatch, fan = std::make_shared<F>(readers)] {
        return sampleBatches(perBatch, [&] {
            fan->push();
            for (std::size_t i = 0; i < readers; ++i)
                fan->take(i);
        });
    });
}

} // namespace Bench
