#pragma once

#include "benchmarks/harness/Workload.h"
#include "benchmarks/osc/Sender.h"
#include <stdexcept>
#include <thread>

namespace Bench {

/// A thousand packets a second, and a scene thread that does nothing but look: the microseconds from the call that
/// sends to the look that finds the value.
template <class Receiver>
class Age {
public:
    Sample operator()()
    {
        constexpr int packets = 300;
        std::vector<double> ages;
        auto next = Clock::now();
        for (int i = 0; i < packets; ++i) {
            std::this_thread::sleep_until(next += std::chrono::milliseconds(1));
            ages.push_back(age());
        }
        return {{quantile(ages, 0.5), quantile(ages, 0.99)}, {}};
    }

private:
    double age()
    {
        constexpr double patience = 1e9;
        const auto start = Clock::now();
        _sender.send(++_number);
        while (!_receiver.sees(_number)) {
            if (nanosecondsSince(start) > patience)
                throw std::runtime_error("a packet on the loopback was lost");
        }
        return nanosecondsSince(start);
    }

    Receiver _receiver{1 << 20};
    Sender _sender{_receiver.port()};
    float _number = 0;
};

} // namespace Bench
