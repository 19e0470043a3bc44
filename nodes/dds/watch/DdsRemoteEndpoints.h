#pragma once

#include <dds/dds.h>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Trovio::Nodes {

/// What other programs publish, or what they subscribe to, that does not match our topics: it has another name, or is
/// in another partition. Where one of our topics has no peer, this tells which of them may be meant.
/// Remembers a bounded number of endpoints.
/// Threads: one.
class DdsRemoteEndpoints {
public:
    /// verb: what the others do, "publishes" or "subscribes to". partition: ours.
    DdsRemoteEndpoints(const char* verb, std::string partition) : _verb(verb), _partition(std::move(partition)) {}

    void note(dds_instance_handle_t handle, const dds_builtintopic_endpoint_t& endpoint);
    void forget(dds_instance_handle_t handle) { _endpoints.erase(handle); }
    void clear() { _endpoints.clear(); }

    /// Says what a program is called, by its participant.
    using DescribePeer = std::function<std::string(dds_instance_handle_t participant)>;
    /// Who may mean that topic, in what it differs, and the cure; empty if nobody does.
    std::string findMeant(const std::string& topic, const DescribePeer& describePeer) const;
    /// A few of their topics; empty if there are none.
    std::string list() const;

private:
    struct Endpoint {
        std::string _topic, _type; // their names in the domain
        std::vector<std::string> _partitions;
        dds_instance_handle_t _participant;
    };
    std::string differenceOf(const Endpoint& endpoint, const std::string& topic) const;

    const char* const _verb;
    const std::string _partition;
    std::map<dds_instance_handle_t, Endpoint> _endpoints;
};

/// The partitions of a peer's endpoint, none for the default one.
std::vector<std::string> readPartitions(const dds_qos_t* qos);

} // namespace Trovio::Nodes
