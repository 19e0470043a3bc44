#include "host/calibrate/Hold.h"

#include <algorithm>
#include <cmath>

namespace Host {

namespace {

/// The number that the share of all is not above.
double quantile(std::vector<double> numbers, double share)
{
    const auto at = static_cast<std::ptrdiff_t>(share * static_cast<double>(numbers.size() - 1));
    std::nth_element(numbers.begin(), numbers.begin() + at, numbers.end());
    return numbers[static_cast<std::size_t>(at)];
}
} // namespace

void Hold::take(const Point& value)
{
    if (_values.size() < MaxValues)
        _values.push_back(value);
}

Point Hold::median() const
{
    Point median;
    for (std::size_t i = 0; i < median.size(); ++i) {
        std::vector<double> numbers;
        for (const Point& value : _values)
            numbers.push_back(value[i]);
        median[i] = quantile(std::move(numbers), 0.5);
    }
    return median;
}

double Hold::spread() const
{
    const Point centre = median();
    std::vector<double> distances;
    for (const Point& value : _values)
        distances.push_back(std::hypot(value[0] - centre[0], value[1] - centre[1], value[2] - centre[2]));
    return quantile(std::move(distances), 0.9);
}
} // namespace Host
