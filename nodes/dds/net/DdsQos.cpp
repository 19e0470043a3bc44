#include "nodes/dds/net/DdsQos.h"

namespace Trovio::Nodes {

namespace {

constexpr int probeDepth = 64;

DdsQos makeQos(const DdsQuality& quality, int depth, dds_durability_kind_t durability)
{
    DdsQos qos(dds_create_qos());
    // No time for a write to wait: who keeps the last records only never waits for readers.
    dds_qset_reliability(qos.get(), quality._reliable ? DDS_RELIABILITY_RELIABLE : DDS_RELIABILITY_BEST_EFFORT, 0);
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_LAST, depth);
    dds_qset_durability(qos.get(), durability);
    return qos;
}

} // namespace

DdsQos makeWriterQos(const DdsQuality& quality)
{
    DdsQos qos = makeQos(quality, quality._depth, DDS_DURABILITY_TRANSIENT_LOCAL);
    dds_qset_durability_service(qos.get(), 0, DDS_HISTORY_KEEP_LAST, 1, DDS_LENGTH_UNLIMITED, DDS_LENGTH_UNLIMITED,
                                DDS_LENGTH_UNLIMITED);
    dds_qset_liveliness(qos.get(), DDS_LIVELINESS_MANUAL_BY_PARTICIPANT, toDdsDuration(quality._lease));
    return qos;
}

DdsQos makeReaderQos(const DdsQuality& quality)
{
    return makeQos(quality, quality._readerDepth,
                   quality._lateJoiners ? DDS_DURABILITY_TRANSIENT_LOCAL : DDS_DURABILITY_VOLATILE);
}

DdsQos makeProbeQos()
{
    DdsQos qos(dds_create_qos());
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_BEST_EFFORT, 0);
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_LAST, probeDepth);
    return qos;
}

DdsQos makeGroupQos(const DdsQuality& quality)
{
    DdsQos qos(dds_create_qos());
    const char* partition = quality._partition.c_str();
    if (!quality._partition.empty())
        dds_qset_partition(qos.get(), 1, &partition);
    return qos;
}

dds_duration_t toDdsDuration(double seconds)
{
    return static_cast<dds_duration_t>(seconds * 1e9);
}

} // namespace Trovio::Nodes
