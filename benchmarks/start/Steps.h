#pragma once

#include "benchmarks/harness/Sampling.h"
#include <vector>

namespace Bench {

/// Four handlers serve every sensor.
inline constexpr int handlers = 4;

/// Collects what each step of one repetition took, for each of its objects.
class Steps {
public:
    explicit Steps(std::size_t objects) : _objects(static_cast<double>(objects)) {}

    template <class Step>
    void time(Step step)
    {
        const auto start = Clock::now();
        step();
        _sample._figures.push_back(nanosecondsSince(start) / _objects);
    }

    Sample sample() const { return _sample; }

private:
    const double _objects;
    Sample _sample;
};

} // namespace Bench
