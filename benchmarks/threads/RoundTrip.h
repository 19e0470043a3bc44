#pragma once

#include "benchmarks/harness/Workload.h"
#include "benchmarks/threads/Pinned.h"
#include <concepts>
#include <memory>
#include <thread>

namespace Bench {

/// One way from a writer on one thread to a reader on another, who sleeps in take() until there is something.
template <class C>
concept Channel = requires(C channel)
{
    channel.push();
    channel.take();
};

/// A record goes to another thread, which sends one back: how long that takes, half of the times and 99 of 100 times.
template <Channel C>
class RoundTrip {
public:
    RoundTrip(int here, int there) : _here(here), _there(there) {}

    Sample operator()()
    {
        constexpr std::size_t trips = 2'000;
        std::thread other([this] {
            const Pinned pinned(_there);
            for (std::size_t i = 0; i < trips; ++i) {
                _forth.take();
                _back.push();
            }
        });
        const Pinned pinned(_here);
        std::vector<double> times(trips);
        trip(); // the other thread has started
        const auto before = allocations();
        for (std::size_t i = 1; i < trips; ++i) {
            const auto start = Clock::now();
            trip();
            times[i] = nanosecondsSince(start);
        }
        const auto allocated = static_cast<double>(allocations() - before);
        other.join();
        return {{quantile(times, 0.5), quantile(times, 0.99)}, allocated / trips};
    }

private:
    void trip()
    {
        _forth.push();
        _back.take();
    }

    const int _here, _there;
    C _forth, _back;
};

template <Channel C>
void addRoundTrip(Workload& workload, const char* name, int here, int there)
{
    workload.add(name, [trip = std::make_shared<RoundTrip<C>>(here, there)] { return (*trip)(); });
}

} // namespace Bench
