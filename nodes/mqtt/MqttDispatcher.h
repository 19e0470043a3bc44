#pragma once

#include "nodes/mqtt/MqttSettings.h"
#include "trovio/Node.h"
#include <map>

namespace Trovio::Nodes {

/// What became of messages; shown by the node.
struct MqttInCounters {
    Counter& _messages; // that came
    Counter& _values;   // pushed into slots
    Counter& _refused;  // payloads, or members of them, that make no value of the slot's type
    Counter& _skipped;  // messages that the broker had kept, where these are not wanted
};

/// Takes messages to the slots of their topic.
/// Threads: one at a time takes; getRemarks() from any, under any lock but the log's.
class MqttDispatcher {
public:
    MqttDispatcher(const std::vector<MqttTopic>& topics, bool takesRetained, MqttInCounters& counters);

    void take(std::string_view topic, std::string_view payload, bool isRetained, const Time& stamp);

    /// Each topic once.
    std::vector<std::string> getTopics() const;

    void forEachSlot(const std::function<void(BasicOutSlot&)>& use);

    /// Why a slot has no values, or not all. Where nothing reached a slot, the text begins with what is known of the
    /// broker.
    std::vector<RemarkInfo> getRemarks(const std::string& broker) const;

private:
    struct Target {
        std::string _pointer;
        std::unique_ptr<TextReceiver> _receiver;
    };

    MqttInCounters& _counters;
    const bool _takesRetained;
    std::map<std::string, std::vector<Target>, std::less<>> _targets; // of each topic
};

} // namespace Trovio::Nodes
