#pragma once

#include "nodes/dds/net/DdsParticipant.h"
#include "nodes/dds/watch/DdsRemoteEndpoints.h"
#include "nodes/dds/watch/DdsTopicProblems.h"
#include "nodes/dds/wire/TopicTypes.h"
#include "nodes/shared/SlotList.h"
#include <map>
#include <string>

namespace Trovio::Nodes {

/// Watches what other programs publish and subscribe to, and finds endpoints of our topics that do not match ours, for
/// which the library gives no reason.
/// Threads: one.
class DdsMatchWatch {
public:
    DdsMatchWatch(const DdsQuality& quality, const DdsFormat& format, const std::vector<ListedSlot>& published,
                  const std::vector<ListedSlot>& subscribed);
    ~DdsMatchWatch();

    /// Throws DdsProblem.
    void open(const DdsParticipant& participant);
    void close();

    /// Reads which endpoints appeared and disappeared since the last update.
    void update();

    /// Adds what does not match: topic, both types, and the peer.
    void tell(DdsTopicProblems& problems) const;

    /// Why nobody publishes a topic that is subscribed to, as far as that can be seen.
    std::string explainMissing(const std::string& topic) const;
    /// Who may want a topic that is published, though nobody subscribes to it; empty if nobody does.
    std::string findWanting(const std::string& topic) const;

private:
    struct Topic {
        std::string _label;
        std::string _type; // as the library knows it
    };
    using Topics = std::map<std::string, Topic, std::less<>>; // by their names in the domain
    void updateFrom(dds_entity_t reader, const Topics& ours, bool isWriter);
    bool isOurs(const dds_builtintopic_endpoint_t& end) const { return end.participant_instance_handle == _own; }
    /// Why the endpoints do not match; empty if they do.
    std::string compare(const dds_builtintopic_endpoint_t& other, const Topic& ours, bool isWriter) const;
    bool isInPartition(const dds_qos_t* qos) const;
    std::string describePeer(dds_instance_handle_t participant) const;
    /// Nodes that take part in the domain beside this one, up to as many as can be read at once.
    std::size_t countOthers() const;

    const DdsQuality _quality;
    const DdsFormat _format;
    Topics _published, _subscribed;
    struct Mismatch {
        std::string _topic, _problem;
    };
    std::map<dds_instance_handle_t, Mismatch> _found; // by the endpoint of another program
    DdsRemoteEndpoints _otherWriters, _otherReaders;
    dds_instance_handle_t _own = 0;              // our participant
    DdsEntity _participants, _writers, _readers; // what the library tells of
};

} // namespace Trovio::Nodes
