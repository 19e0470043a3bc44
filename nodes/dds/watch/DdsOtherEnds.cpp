#include "nodes/dds/watch/DdsOtherEnds.h"

#include "nodes/dds/wire/TopicTypes.h"
#include "trovio/messages/NearestName.h"
#include <algorithm>
#include <set>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t mostEnds = 256;       // that are remembered; peers can make any number
constexpr std::size_t mostListed = 4;       // topics, partitions that a message names
constexpr std::size_t longestText = 80;     // characters of a peer's words in a message
constexpr std::size_t longestCompared = 64; // characters of a name that may be nearly ours

/// What only the nodes of this system have among themselves.
bool isInternal(std::string_view topic)
{
    return topic == "ostrel_clock_question" || topic == "ostrel_clock_answer";
}

std::string listOf(const std::vector<std::string>& names)
{
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), mostListed); ++i)
        list += (i > 0 ? ", " : "") + names[i].substr(0, longestText);
    return names.size() > mostListed ? list + " and " + std::to_string(names.size() - mostListed) + " more" : list;
}

std::string partitionOf(const std::vector<std::string>& names)
{
    return names.empty() ? "in no partition" : "in partition " + listOf(names);
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

void DdsOtherEnds::note(dds_instance_handle_t handle, const dds_builtintopic_endpoint_t& end)
{
    if (_ends.size() < mostEnds && !isInternal(end.topic_name))
        _ends[handle] = {end.topic_name, end.type_name, readPartitions(end.qos), end.participant_instance_handle};
}

std::string DdsOtherEnds::findMeant(const std::string& topic, const DescribePeer& describePeer) const
{
    const auto tell = [&](const End& end) {
        return describePeer(end._participant) + " " + _verb + " " + differenceOf(end, topic);
    };
    const std::string ofOtherRule = topic.starts_with("rt/") ? topic.substr(3) : "rt/" + topic;
    std::vector<std::string_view> names;
    const End* other = nullptr;
    for (const auto& [handle, end] : _ends) {
        if (end._topic == topic)
            return tell(end);
        if (end._topic == ofOtherRule)
            other = &end;
        if (end._topic.size() <= longestCompared)
            names.push_back(end._topic);
    }
    if (other)
        return tell(*other);
    const std::string_view nearest = nearestName(topic, names);
    const auto found =
        std::ranges::find(_ends, nearest, [](const auto& end) { return std::string_view(end.second._topic); });
    return nearest.empty() || found == _ends.end() ? std::string() : tell(found->second);
}

std::string DdsOtherEnds::differenceOf(const End& end, const std::string& topic) const
{
    const std::string type = " (" + describeTopicType(end._type) + ")";
    const std::string place = " " + partitionOf(end._partitions);
    if (end._topic == topic)
        return "it" + type + place + ", here it is " +
               partitionOf(_partition.empty() ? std::vector<std::string>() : std::vector{_partition}) +
               "; give both ends one partition";
    const std::string name = end._topic.substr(0, longestText) + type + place;
    if (end._topic == "rt/" + topic || topic == "rt/" + end._topic)
        return name + ", here it is " + topic + "; set ros2=" + (topic.starts_with("rt/") ? "no" : "yes") +
               " here, or the other way there";
    return name + ", a name near to it: topics meet by the whole name, large and small letters told apart";
}

std::string DdsOtherEnds::list() const
{
    std::set<std::string> topics;
    for (const auto& [handle, end] : _ends)
        topics.insert(end._topic + " (" + describeTopicType(end._type) + ") " + partitionOf(end._partitions));
    return listOf({topics.begin(), topics.end()});
}

} // namespace Trovio::Nodes
