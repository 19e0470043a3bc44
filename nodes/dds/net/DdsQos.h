#pragma once

#include <dds/dds.h>
#include <memory>
#include <string>

namespace Trovio::Nodes {

/// What a node asks of its topics.
struct DdsQuality {
    std::string _partition;
    int _depth = 1;       // records that may wait to be sent
    int _readerDepth = 1; // records that may wait to be taken
    bool _reliable = true;
    bool _lateJoiners = true; // get the last value; where readers ask for that, writers have to keep it
    double _lease = 3.0;      // seconds in which a writer has to assert its liveliness
};

struct DdsQosDelete {
    void operator()(dds_qos_t* qos) const { dds_delete_qos(qos); }
};
using DdsQos = std::unique_ptr<dds_qos_t, DdsQosDelete>;

/// For writers: keeps the last records only, and the very last one for those that join later. Their participant has to
/// give signs of life: those go to readers that it knows, so that a reader which it does not hear can tell.
DdsQos makeWriterQos(const DdsQuality& quality);

/// For readers: keeps the last records only.
DdsQos makeReaderQos(const DdsQuality& quality);

/// For questions and answers that are worthless once they are late.
DdsQos makeProbeQos();

/// For publishers and subscribers.
DdsQos makeGroupQos(const DdsQuality& quality);

/// Seconds as the library counts them.
dds_duration_t toDdsDuration(double seconds);

} // namespace Trovio::Nodes
