#pragma once

#include "monitor/tap/TapSet.h"

#include <string>
#include <vector>

namespace Monitor {

/// How old records are when they pass a slot, in seconds.
struct HopAge {
    std::string _label;
    std::size_t _records = 0; // that were measured; the ages are 0 where there was none
    double _median = 0, _p99 = 0, _least = 0, _most = 0;
    double _bound = 0; // by which each of them may be wrong at most
};

/// Measures ages along a way of slots: at each out-slot by a tap, at the last in-slot, which is where a frame or a node
/// takes records, by looking again and again at what was taken last. Filters keep the stamp of the source, so records
/// are told by it, and only those count that were seen at the first slot.
/// Threads: one; the root is open while this lives.
class HopAges {
public:
    /// The clock that stamped the records.
    struct SourceClock {
        double _ahead = 0; // seconds before ours
        double _bound = 0; // seconds by which that may be wrong
    };

    /// way: labels as the root sees them, out-slots and at its end an in-slot; in-slots between are passed over.
    explicit HopAges(const std::vector<std::string>& way);

    /// To be called every few milliseconds: the ages at the last slot are as exact as that.
    void poll();

    std::vector<HopAge> ages(const SourceClock& clock) const;

private:
    struct Passed {
        double _stamp, _time; // seconds since 1970
    };
    struct Hop {
        std::string _label;
        std::vector<Passed> _passed;
        double _bound = 0; // of the times
    };
    static void note(Hop& hop, const Passed& passed, double bound);
    void pollLast();
    HopAge ageOf(const Hop& hop, const std::vector<double>& stamps, const SourceClock& clock) const;

    TapSet _taps;
    std::vector<Hop> _hops;
    double _lastPoll = 0;  // when it began
    double _lastTaken = 0; // stamp
};

} // namespace Monitor
