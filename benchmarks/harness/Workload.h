#pragma once

#include "benchmarks/harness/Sampling.h"
#include <functional>
#include <string>
#include <vector>

namespace Bench {

/// One figure of a workload: what it is, in which unit, and how it is scaled for the table.
struct Metric {
    std::string _name; // empty where a workload has one figure only
    std::string _unit;
    double _scale = 1; // multiplies the figure that a contender returns
};

/// A bound that one contender has to keep: relative to another one, or to a figure that is expected.
struct Limit {
    std::string _contender;
    std::string _against; // the other contender, or what is expected
    double _atMost;
    std::size_t _metric;
    std::optional<double> _expected;
};

/// A piece of work and those who do it. The first contender is the floor to which the others are compared.
class Workload {
public:
    using Measure = std::function<Sample()>;
    struct Contender {
        std::string _name;
        Measure _measure;
    };

    void setMetrics(std::vector<Metric> metrics) { _metrics = std::move(metrics); }
    void add(std::string name, Measure measure) { _contenders.push_back({std::move(name), std::move(measure)}); }
    void limit(std::string contender, std::string against, double atMost, std::size_t metric = 0)
    {
        _limits.push_back({std::move(contender), std::move(against), atMost, metric, {}});
    }
    void limitToFigure(std::string contender, std::string what, double figure, std::size_t metric)
    {
        _limits.push_back({std::move(contender), std::move(what), 1, metric, figure});
    }
    /// The contender must not allocate in steady state.
    void forbidAllocations(std::string contender) { _steady.push_back(std::move(contender)); }
    void limitEach(const std::string& contender, const std::string& against, double atMost)
    {
        for (std::size_t metric = 0; metric < _metrics.size(); ++metric)
            limit(contender, against, atMost, metric);
    }

    const std::vector<Metric>& metrics() const { return _metrics; }
    const std::vector<Contender>& contenders() const { return _contenders; }
    const std::vector<Limit>& limits() const { return _limits; }
    bool mayAllocate(const std::string& contender) const
    {
        return std::find(_steady.begin(), _steady.end(), contender) == _steady.end();
    }

private:
    std::vector<Metric> _metrics{{"", "ns"}};
    std::vector<Contender> _contenders;
    std::vector<Limit> _limits;
    std::vector<std::string> _steady;
};

/// A workload by name. It is built only when it runs, and gone afterwards.
struct Entry {
    const char* _name; // "W2.push": chosen by "W2" and by "W2.push"
    void (*_build)(Workload&);
};

/// The main program: runs the workloads that the arguments name, all if none, and prints their rows.
/// Arguments: [--repetitions N] [--json FILE] [--markdown FILE] [WORKLOAD…]. The files get one object or one line of a
/// table for each row, appended.
int runWorkloads(const std::vector<Entry>& entries, int argc, char** argv);

} // namespace Bench
