#pragma once

#include "nodes/dds/clocks/PeerClocks.h"
#include <string>

namespace Trovio::Nodes {

/// When a value came, and whose it is. Seconds since 1970.
struct SampleArrival {
    std::uint64_t _writer;
    double _stamp; // by the writer's clock
    double _time;  // by ours
};

/// How long a value was under way and how old it is, by its source's clock, in seconds.
struct ValueTiming {
    double _delay; // from its time stamp to its arrival
    double _age;   // since its time stamp
    double _bound; // by which both may be wrong at most

    /// now: our date.
    ValueTiming(const SampleArrival& arrival, const ClockOffset::Estimate& clock, double now);
};

/// The same in words, with the difference of the clocks; or why it is not known.
std::string describeTiming(const SampleArrival& arrival, const PeerClocks::Knowledge& clock, double now);

} // namespace Trovio::Nodes
