#include "nodes/dds/TypedTopics.h"

#include "nodes/dds/wire/RosValue.h"
#include "nodes/shared/SendQueue.h"
#include "trovio/SlotTypes.h"
#include <array>

namespace Trovio::Nodes {

namespace {

/// A slot value type T and how it travels: WireValue<T> or RosValue<T>.
template <class T, class Value>
class TypedPublication final : public DdsPublication {
public:
    TypedPublication(const ListedSlot& topic, const DdsFormat& format, unsigned capacity, DdsOutCounters& counters,
                     Clock& clock, std::function<void()> arrived)
        : DdsPublication(topic, format, Value::descriptor(), std::is_trivially_copyable_v<T>, counters, clock),
          _queue(topic._name, capacity, [this, arrived = std::move(arrived)] {
              if (!sendAtOnce())
                  arrived();
          })
    {
    }

    BasicInSlot& getSlot() override { return _queue.getSlot(); }

private:
    std::optional<Sample> takeSample(const void* kept, std::string& problem) override OSTREL_REQUIRES(_sendLock)
    {
        auto record = _queue.take();
        if (!record)
            return std::nullopt;
        Prepared& next = _prepared[kept == &_prepared[0]._sample ? 1 : 0];
        next._record = std::move(*record);
        problem = next._value.refer(next._record.getValue(), next._sample);
        const double stamp = next._record.getTimeStamp().getSeconds();
        if constexpr (requires { next._sample.origin; })
            return Sample{&next._sample, &next._sample.origin, stamp};
        if constexpr (requires { next._sample.header; })
            if (problem.empty())
                problem = writeTime(stamp, next._sample.header.stamp);
        return Sample{&next._sample, nullptr, stamp};
    }

    struct Prepared {
        Data<T> _record;
        Value _value; // of the record, which the sample refers to
        typename Value::Sample _sample{};
    };
    std::array<Prepared, 2> _prepared; // the last that was sent, and the next
    SendQueue<T> _queue;               // last: who pushes may send at once
};

} // namespace

std::unique_ptr<DdsPublication> createPublication(const ListedSlot& topic, const DdsFormat& format, unsigned capacity,
                                                  DdsOutCounters& counters, Clock& clock, std::function<void()> arrived)
{
    std::unique_ptr<DdsPublication> publication;
    const auto make = [&]<class T, class Value>(TypeTag<T>, TypeTag<Value>) {
        publication =
            std::make_unique<TypedPublication<T, Value>>(topic, format, capacity, counters, clock, std::move(arrived));
    };
    withFormat(topic._typeName, format, make);
    return publication;
}

} // namespace Trovio::Nodes
