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

/// For few objects a step is shorter than what the system gives another process at a time, so it is run more often.
template <class Run>
Sample medianOf(std::size_t runs, Run run)
{
    std::vector<Sample> samples;
    for (std::size_t i = 0; i < runs; ++i)
        samples.push_back(run());
    Sample median = samples.front();
    for (std::size_t figure = 0; figure < median._figures.size(); ++figure) {
        std::vector<double> values;
        for (const Sample& sample : samples)
            values.push_back(sample._figures[figure]);
        median._figures[figure] = quantile(values, 0.5);
    }
    return median;
}

/// Runs the smaller size and the larger one, and adds to what the steps of the larger one took for each object how many
/// times that is what they took with the smaller one.
template <class Run>
Sample withGrowth(std::size_t smaller, std::size_t larger, Run run)
{
    const auto times = [&](std::size_t objects) {
        return medianOf(std::max<std::size_t>(1, 15'000 / objects), [&] { return run(objects); });
    };
    const Sample before = times(smaller);
    Sample sample = times(larger);
    for (std::size_t step = 0; step < before._figures.size(); ++step)
        sample._figures.push_back(sample._figures[step] / before._figures[step]);
    return sample;
}

} // namespace Bench
