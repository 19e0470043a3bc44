#include "nodes/dds/TypedTopics.h"

#include "nodes/dds/wire/RosValue.h"
#include "trovio/SlotTypes.h"

namespace Trovio::Nodes {

namespace {

/// The stamp of a message's header, or else the one that the library brought with it; 0 if there is none.
template <class Message>
double stampOf(const Message& message, const dds_sample_info_t& info)
{
    if constexpr (requires { message.header; })
        if (const double stamp = readTime(message.header.stamp); stamp != 0.0)
            return stamp;
    return info.source_timestamp > 0 ? static_cast<double>(info.source_timestamp) * 1e-9 : 0.0;
}

/// A slot value type T and how it travels: WireValue<T> or RosValue<T>.
template <class T, class Value>
class TypedSubscription final : public DdsSubscription {
public:
    TypedSubscription(const ListedSlot& topic, const DdsFormat& format, DdsInCounters& counters, Clock& clock)
        : DdsSubscription(topic, format, Value::descriptor(), counters, clock),
          _finite(format._isFinite),
          _slot(topic._name)
    {
    }

    ~TypedSubscription() override
    {
        close();
        freeSample();
    }

    BasicOutSlot& getSlot() override { return _slot; }

private:
    std::optional<Trovio_Wire_Origin> read(const ddsi_serdata& serialised, const dds_sample_info_t& info) override
    {
        if constexpr (requires { _record.getValue().acquire(); }) {
            _record.getValue() = {}; // a receiver may still hold it
            _record.getValue().acquire();
        }
        if constexpr (requires { Value::lend(*_record.getValue(), 0, _sample); })
            Value::lend(*_record.getValue(), sizeOf(serialised), _sample);
        else if constexpr (!std::is_trivially_copyable_v<T>)
            freeSample(); // reused, each part would keep the largest size that it ever had
        if (!readSample(serialised, &_sample))
            return std::nullopt;
        if constexpr (requires { _sample.origin; })
            return _sample.origin;
        else
            return Trovio_Wire_Origin{stampOf(_sample, info), info.publication_handle, 0};
    }

    std::string deliver(const Time& stamp) override
    {
        std::string problem = Value::read(_sample, _finite, _record.getValue());
        if (problem.empty()) {
            _record.setTimeStamp(stamp);
            _slot.push(_record);
        }
        return problem;
    }

    void freeSample()
    {
        dds_sample_free(&_sample, &Value::descriptor(), DDS_FREE_CONTENTS);
        _sample = {};
    }

    const bool _finite;
    OutSlot<T> _slot;
    Data<T> _record;
    typename Value::Sample _sample{};
};

} // namespace

std::unique_ptr<DdsSubscription> createSubscription(const ListedSlot& topic, const DdsFormat& format,
                                                    DdsInCounters& counters, Clock& clock)
{
    std::unique_ptr<DdsSubscription> subscription;
    withFormat(topic._typeName, format, [&]<class T, class Value>(TypeTag<T>, TypeTag<Value>) {
        subscription = std::make_unique<TypedSubscription<T, Value>>(topic, format, counters, clock);
    });
    return subscription;
}

} // namespace Trovio::Nodes
