#pragma once

#include "nodes/dds/net/DdsDomain.h"
#include "nodes/dds/net/DdsQos.h"
#include <cstdint>
#include <functional>

namespace Trovio::Nodes {

class DdsClocks;

/// A node's participant in its domain, with all that its endpoints are made with.
/// Ownership: made by the session, which outlives what is opened with it and owns the entities.
struct DdsParticipant {
    DdsDomain* _domain;
    dds_entity_t _entity;
    dds_entity_t _publisher;
    dds_entity_t _subscriber;
    const DdsQuality& _quality;
    std::uint64_t _writerID; // what the node writes under
    // Both from any thread, under any lock.
    std::function<void()> _wake;         // the node's thread
    std::function<void()> _peersChanged; // wakes it, too: a peer appeared or disappeared
    DdsClocks* _clocks;                  // null where clocks are not compared
};

} // namespace Trovio::Nodes
