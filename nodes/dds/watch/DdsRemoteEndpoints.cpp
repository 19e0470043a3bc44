#include "nodes/dds/watch/DdsRemoteEndpoints.h"

#include "nodes/dds/wire/TopicTypes.h"
#include "nodes/shared/ShortList.h"
#include "trovio/messages/NearestName.h"
#include <algorithm>
#include <set>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxEndpoints = 256;     // that are remembered; peers can make any number
constexpr std::size_t maxListed = 4;          // topics, partitions that a message names
constexpr std::size_t maxTextLength = 80;     // characters of a peer's words in a message
constexpr std::size_t maxComparedLength = 64; // characters of a name that may be nearly ours

/// Topics that the nodes of this system use among themselves.
bool isInternal(std::string_view topic)
{
    return topic == "ostrel_clock_question" || topic == "ostrel_clock_answer";
}

std::string partitionOf(const std::vector<std::string>& names)
{
    return names.empty() ? "in no partition" : "in partition " + shortList(names, maxListed, ", ", maxTextLength);
}

} // namespace

std::vector<std::string> readPartitions(const dds_qos_t* qos)
{
    std::uint32_t count = 0;
    char** names = nullptr;
    dds_qget_partition(qos, &count, &names);
    std::vector<std::string> partitions;
    for (std::uint32_t i = 0; i < count; ++i) {
        partitions.emplace_back(names[i]);
        dds_free(names[i]);
    }
    dds_free(names);
    if (partitions.size() == 1 && partitions.front().empty())
        partitions.clear();
    return partitions;
}

void DdsRemoteEndpoints::note(dds_instance_handle_t handle, const dds_builtintopic_endpoint_t& endpoint)
{
    if (_endpoints.size() < maxEndpoints && !isInternal(endpoint.topic_name))
        _endpoints[handle] = {endpoint.topic_name, endpoint.type_name, readPartitions(endpoint.qos),
                              endpoint.participant_instance_handle};
}

std::string DdsRemoteEndpoints::findMeant(const std::string& topic, const DescribePeer& describePeer) const
{
    const auto tell = [&](const Endpoint& endpoint) {
        return describePeer(endpoint._participant) + " " + _verb + " " + differenceOf(endpoint, topic);
    };
    const std::string ofOtherRule = topic.starts_with("rt/") ? topic.substr(3) : "rt/" + topic;
    std::vector<std::string_view> names;
    const Endpoint* other = nullptr;
    for (const auto& [handle, endpoint] : _endpoints) {
        if (endpoint._topic == topic)
            return tell(endpoint);
        if (endpoint._topic == ofOtherRule)
            other = &endpoint;
        if (endpoint._topic.size() <= maxComparedLength)
            names.push_back(endpoint._topic);
    }
    if (other)
        return tell(*other);
    const std::string_view nearest = nearestName(topic, names);
    const auto found = std::ranges::find(_endpoints, nearest,
                                         [](const auto& endpoint) { return std::string_view(endpoint.second._topic); });
    return nearest.empty() || found == _endpoints.end() ? std::string() : tell(found->second);
}

std::string DdsRemoteEndpoints::differenceOf(const Endpoint& endpoint, const std::string& topic) const
{
    const std::string type = " (" + describeTopicType(endpoint._type) + ")";
    const std::string place = " " + partitionOf(endpoint._partitions);
    if (endpoint._topic == topic)
        return "it" + type + place + ", here it is " +
               partitionOf(_partition.empty() ? std::vector<std::string>() : std::vector{_partition}) +
               "; give both ends one partition";
    const std::string name = endpoint._topic.substr(0, maxTextLength) + type + place;
    if (endpoint._topic == "rt/" + topic || topic == "rt/" + endpoint._topic)
        return name + ", here it is " + topic + "; set ros2=" + (topic.starts_with("rt/") ? "no" : "yes") +
               " here, or the other way there";
    return name + ", a similar name: topics match by their whole names, which are case-sensitive";
}

std::string DdsRemoteEndpoints::list() const
{
    std::set<std::string> topics;
    for (const auto& [handle, endpoint] : _endpoints)
        topics.insert(endpoint._topic + " (" + describeTopicType(endpoint._type) + ") " +
                      partitionOf(endpoint._partitions));
    return shortList({topics.begin(), topics.end()}, maxListed, ", ", maxTextLength);
}

} // namespace Trovio::Nodes
