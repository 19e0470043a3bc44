#include "nodes/mqtt/MqttDispatcher.h"

#include "trovio/BasicOutSlot.h"

namespace Trovio::Nodes {

MqttDispatcher::MqttDispatcher(const std::vector<MqttTopic>& topics, bool takesRetained, MqttInCounters& counters)
    : _counters(counters), _takesRetained(takesRetained)
{
    for (const MqttTopic& topic : topics)
        _targets[topic._topic].push_back({topic._pointer, TextReceiver::create("MQTT", topic._slot)});
}

void MqttDispatcher::take(std::string_view topic, std::string_view payload, bool isRetained, const Time& stamp)
{
    _counters._messages.add();
    const auto found = _targets.find(topic);
    if (found == _targets.end())
        return; // the broker was not asked for it
    if (isRetained && !_takesRetained) {
        _counters._skipped.add();
        return;
    }
    const bool isTooLong = payload.size() > MaxPayload;
    JsonPayload content(isTooLong ? std::string_view() : payload);
    for (const Target& target : found->second) {
        const auto part = isTooLong ? std::nullopt : content.find(target._pointer);
        const bool isValue = part ? target._receiver->deliver(*part, stamp) : target._receiver->refuse(payload);
        (isValue ? _counters._values : _counters._refused).add();
    }
}

std::vector<std::string> MqttDispatcher::getTopics() const
{
    std::vector<std::string> topics;
    for (const auto& [topic, targets] : _targets)
        topics.push_back(topic);
    return topics;
}

void MqttDispatcher::forEachSlot(const std::function<void(BasicOutSlot&)>& use)
{
    for (const auto& [topic, targets] : _targets)
        for (const Target& target : targets)
            use(target._receiver->getSlot());
}

std::vector<RemarkInfo> MqttDispatcher::getRemarks(const std::string& broker) const
{
    std::vector<RemarkInfo> remarks;
    const std::uint64_t messages = _counters._messages.get();
    for (const auto& [topic, targets] : _targets) {
        for (const Target& target : targets) {
            BasicOutSlot& slot = target._receiver->getSlot();
            const std::string refused = target._receiver->describeRefused();
            const std::string others =
                messages == 0 ? "no messages came" : std::to_string(messages) + " messages came, none for " + topic;
            if (slot.getActivity()._written == 0)
                remarks.push_back({slot.getName(), broker + "; " + (refused.empty() ? others : refused)});
            else if (!refused.empty())
                remarks.push_back({slot.getName(), refused});
        }
    }
    return remarks;
}

} // namespace Trovio::Nodes
