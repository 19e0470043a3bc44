#pragma once

#include "benchmarks/harness/Workload.h"
#include "benchmarks/osc/Sender.h"
#include <thread>

namespace Bench {

/// Offers packets faster and faster, a tenth of a second each time, until the first of them is lost or the sender
/// cannot go faster. Returns the packets a second of the last time at which all of them came.
template <class Receiver>
class Rate {
public:
    static constexpr int bufferBytes = 1 << 20;

    Sample operator()()
    {
        double best = 0;
        for (double wanted = 50'000;; wanted *= 1.25) {
            const double sent = offer(wanted);
            if (!allCame())
                break;
            best = std::max(best, sent);
            if (sent < 0.9 * wanted)
                break; // that is all that a sender can do
        }
        return {{best}, {}};
    }

private:
    static constexpr double seconds = 0.1;

    /// How many packets a second it really was.
    double offer(double wanted)
    {
        const std::uint64_t before = _sent;
        const auto start = Clock::now();
        double elapsed = 0;
        for (; elapsed < seconds; elapsed = nanosecondsSince(start) * 1e-9) {
            if (static_cast<double>(_sent - before) > wanted * elapsed)
                continue; // ahead of time
            _sender.sendSome();
            _sent += Sender::atOnce;
        }
        return static_cast<double>(_sent - before) / elapsed;
    }

    bool allCame()
    {
        const auto start = Clock::now();
        while (_receiver.received() < _sent && nanosecondsSince(start) < 0.1e9)
            std::this_thread::yield();
        const std::uint64_t sent = std::exchange(_sent, _receiver.received()); // what was lost is not waited for again
        return sent == _sent;
    }

    Receiver _receiver{bufferBytes};
    Sender _sender{_receiver.port()};
    std::uint64_t _sent = 0;
};

} // namespace Bench
