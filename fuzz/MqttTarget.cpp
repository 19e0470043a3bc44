// The payload of a message, through the MQTT node's reader into an out-slot of every type, as a whole and as a member,
// and from there through an in-slot back into a payload. What the writer made must be read and written again without
// any difference.
#include "fuzz/Fuzz.h"
#include "nodes/mqtt/MqttDispatcher.h"
#include "nodes/text/TextValue.h"
#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/SlotTypes.h"

namespace Fuzz {

namespace {

using namespace Trovio;
using namespace Trovio::Nodes;

using Vectors = PayloadForm::Vectors;
using Switches = PayloadForm::Switches;
constexpr PayloadForm forms[] = {
    {Vectors::Array, Switches::Bool}, {Vectors::Object, Switches::OnOff}, {Vectors::Array, Switches::Number}};

/// What the node does between the broker and the broker, for one topic.
class Road {
public:
    explicit Road(const MqttTopic& topic)
        : _topic(topic), _dispatcher({topic}, true, _counters), _sender(TextSender::create(topic._slot, 1, [] {}))
    {
        _dispatcher.forEachSlot([this](BasicOutSlot& slot) { slot.connect(&_sender->getSlot()); });
    }
    ~Road()
    {
        _dispatcher.forEachSlot([this](BasicOutSlot& slot) { slot.disconnect(&_sender->getSlot()); });
    }

    /// The payload that the node would send for the value; nothing if there is none, or it cannot be sent.
    std::optional<std::string> travel(std::string_view payload, const PayloadForm& form)
    {
        const std::uint64_t before = _values.get();
        _dispatcher.take(_topic._topic, payload, false, Time(1.0));
        TextRecord record;
        const bool hasValue = _sender->take(record);
        require(hasValue == (_values.get() > before), "every value that is counted arrives");
        require(_messages.get() == _values.get() + _refused.get(), "every message has one fate");
        return hasValue ? formatPayload(record, _topic._pointer, form) : std::nullopt;
    }

private:
    Counter _messages{"messages"}, _values{"values"}, _refused{"refused"}, _skipped{"skipped"};
    MqttInCounters _counters{_messages, _values, _refused, _skipped};
    const MqttTopic _topic;
    MqttDispatcher _dispatcher;
    std::unique_ptr<TextSender> _sender;
};

const std::vector<std::unique_ptr<Road>>& allRoads()
{
    static const auto roads = [] {
        std::vector<std::unique_ptr<Road>> all;
        forEachSlotType([&all]<class T>(TypeTag<T>) {
            if constexpr (TextSlotValue<T>)
                for (const char* pointer : {"", "/a", "/a/1"})
                    all.push_back(std::make_unique<Road>(
                        MqttTopic{"t", pointer, {std::string("t") + pointer, TypeName<T>::getName()}}));
        });
        return all;
    }();
    return roads;
}

} // namespace

void runOnce(std::string_view input)
{
    for (const auto& road : allRoads()) {
        for (const PayloadForm& form : forms) {
            const auto payload = road->travel(input, form);
            if (!payload)
                continue;
            const auto again = road->travel(*payload, form);
            require(again.has_value(), "what the node writes, it reads");
            require(again == payload, "what was written and read is written as before");
        }
    }
}

} // namespace Fuzz
