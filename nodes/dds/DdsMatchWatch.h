#pragma once

#include "nodes/dds/DdsEnds.h"
#include "nodes/dds/DdsTroubles.h"
#include "nodes/dds/TopicTypes.h"
#include "nodes/shared/SlotList.h"
#include <map>
#include <string>

namespace Trovio::Nodes {

/// Looks at what other programs publish and subscribe to, and finds those that mean one of our topics but do not meet
/// it: the library would leave the two ends apart without a word.
/// Threads: one.
class DdsMatchWatch {
public:
    DdsMatchWatch(const DdsQuality& quality, const DdsFormat& format, const std::vector<ListedSlot>& published,
                  const std::vector<ListedSlot>& subscribed);
    ~DdsMatchWatch();

    /// Throws DdsProblem.
    void open(const DdsEnds& ends);
    void close();

    /// Takes in what came and went since the last look.
    void look();

    /// Adds what does not meet: topic, both types, and the peer.
    void tell(DdsTroubles& troubles) const;

private:
    struct Topic {
        std::string _label;
        std::string _type; // as the library knows it
    };
    using Topics = std::map<std::string, Topic, std::less<>>; // by their names in the domain
    void lookAt(dds_entity_t reader, const Topics& ours, bool isWriter);
    /// What is wrong; empty if nothing is.
    std::string compare(const dds_builtintopic_endpoint_t& other, const Topic& ours, bool isWriter) const;
    bool isInPartition(const dds_qos_t* qos) const;
    std::string describePeer(const dds_builtintopic_endpoint_t& endpoint) const;

    const DdsQuality _quality;
    Topics _published, _subscribed;
    struct Mismatch {
        std::string _topic, _problem;
    };
    std::map<dds_instance_handle_t, Mismatch> _found; // by the end of another program
    DdsEntity _participants, _writers, _readers;      // what the library tells of
};

} // namespace Trovio::Nodes
