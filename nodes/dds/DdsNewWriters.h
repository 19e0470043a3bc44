#pragma once

#include "nodes/dds/wire/DdsSerialised.h"
#include <map>
#include <optional>
#include <vector>

namespace Trovio::Nodes {

/// Holds back the samples of writers that were just discovered. To a reader that joins late, a writer sends its last
/// sample, and with it all that others have not acknowledged yet, which nobody asked for: so they wait a little, until
/// it shows which are old.
/// Threads: one at a time.
class DdsNewWriters {
public:
    struct Sample {
        DdsSerialised _serialised;
        dds_sample_info_t _info;
        double _arrived; // date
    };

    /// now: seconds that never go back.
    void hold(Sample sample, double now);

    /// The writers that have waited long enough.
    std::vector<dds_instance_handle_t> findDue(double now) const;
    /// When the next one will have; nothing if none waits.
    std::optional<double> nextDue() const;

    /// That writer's samples in order, without old ones but for the last.
    std::vector<Sample> release(dds_instance_handle_t writer, double now);

    void clear() { _writers.clear(); }

private:
    struct Writer {
        double _since;
        std::vector<Sample> _samples;
    };
    std::map<dds_instance_handle_t, Writer> _writers;
};

} // namespace Trovio::Nodes
