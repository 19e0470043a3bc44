#pragma once

#include "benchmarks/harness/Workload.h"
#include <string>
#include <vector>

namespace Bench {

/// All samples of a workload: [repetition][contender].
using Samples = std::vector<std::vector<Sample>>;

struct Verdict {
    std::string _what; // "of floor", "allocations"
    double _found;
    double _atMost;
    bool passes() const { return _found <= _atMost; }
};

/// One line of the table: one metric of one contender.
struct Row {
    std::string _workload;
    std::string _contender;
    std::string _unit;
    double _median, _least, _most;
    double _ratio;                      // to the floor
    std::optional<double> _allocations; // the most in any repetition
    std::vector<Verdict> _verdicts;
};

/// The rows of a workload, metric by metric. A ratio is the median of the ratios within the repetitions, so that what
/// slows a whole repetition down falls out of it.
std::vector<Row> makeRows(const std::string& name, const Workload& workload, const Samples& samples);

std::string toText(const Row& row);
/// A line of a table of seven columns.
std::string toMarkdown(const Row& row);
std::string toJson(const Row& row);

} // namespace Bench
