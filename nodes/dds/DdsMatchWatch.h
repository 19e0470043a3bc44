#pragma once

#include "nodes/dds/DdsEnds.h"
#include "nodes/shared/SlotList.h"
#include <map>
#include <string>

namespace Trovio::Nodes {

/// Looks at what other programs publish and subscribe to, and finds those that mean one of our topics but do not meet
/// it: the library would leave the two ends apart without a word.
/// Threads: one.
class DdsMatchWatch {
public:
    DdsMatchWatch(const DdsQuality& quality, const std::vector<ListedSlot>& published,
                  const std::vector<ListedSlot>& subscribed);
    ~DdsMatchWatch();

    /// Throws DdsProblem.
    void open(const DdsEnds& ends);
    void close();

    /// Takes in what came and went since the last look.
    void look();

    /// What does not meet: topic, both types, and the peer; empty if all is well.
    std::string getProblem() const;

private:
    using Types = std::map<std::string, std::string, std::less<>>;
    void lookAt(dds_entity_t reader, const Types& ours, bool isWriter);
    std::string compare(const dds_builtintopic_endpoint_t& other, const Types& ours, bool isWriter) const;
    bool isInPartition(const dds_qos_t* qos) const;
    std::string describePeer(const dds_builtintopic_endpoint_t& endpoint) const;

    const DdsQuality _quality;
    Types _published, _subscribed;                       // topic, slot value type
    std::map<dds_instance_handle_t, std::string> _found; // what is wrong with that end of another program
    DdsEntity _participants, _writers, _readers;         // what the library tells of
};

} // namespace Trovio::Nodes
