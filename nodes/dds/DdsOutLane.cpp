#include "nodes/dds/DdsOutLane.h"

#include "nodes/dds/DdsLog.h"
#include "nodes/dds/WireValue.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/SlotTypes.h"
#include <atomic>

namespace Trovio::Nodes {

namespace {

constexpr double reportPeriod = 1.0; // seconds

template <class T>
class TypedOutLane final : public DdsOutLane, SlotListener {
public:
    TypedOutLane(const ListedSlot& topic, unsigned capacity, DdsOutCounters& counters, Clock& clock,
                 std::function<void()> arrived)
        : DdsOutLane(topic, WireType<T>::descriptor(), counters, clock),
          _arrived(std::move(arrived)),
          _slot(topic._name, capacity)
    {
        _slot.setListener(this);
    }

    BasicInSlot& getSlot() override { return _slot; }

private:
    std::optional<Sample> takeSample(std::string& problem) override
    {
        if (!_waiting.load())
            return std::nullopt;
        _waiting = false; // before the look: a record that comes now sets it again
        if (_slot.empty())
            return std::nullopt;
        _waiting = true;
        _record = _slot.pop();
        problem = _value.refer(_record.getValue(), _sample);
        return Sample{&_sample, &_sample.origin, _record.getTimeStamp().getSeconds()};
    }

    void dataArrived(Slot&) override
    {
        _waiting = true;
        _arrived();
    }

    const std::function<void()> _arrived;
    std::atomic<bool> _waiting{false}; // spares the lock of the many slots that have nothing
    BufferedInSlot<T> _slot;
    Data<T> _record;
    WireValue<T> _value;
    typename WireType<T>::Sample _sample{};
};

} // namespace

std::unique_ptr<DdsOutLane> DdsOutLane::create(const ListedSlot& topic, unsigned capacity, DdsOutCounters& counters,
                                               Clock& clock, std::function<void()> arrived)
{
    std::unique_ptr<DdsOutLane> lane;
    withSlotType(topic._typeName, [&]<class T>(TypeTag<T>) {
        lane = std::make_unique<TypedOutLane<T>>(topic, capacity, counters, clock, std::move(arrived));
    });
    return lane;
}

DdsOutLane::DdsOutLane(const ListedSlot& topic, const dds_topic_descriptor_t& descriptor, DdsOutCounters& counters,
                       Clock& clock)
    : _topic(topic), _descriptor(descriptor), _counters(counters), _reports(clock, reportPeriod)
{
}

void DdsOutLane::open(const DdsEnds& ends)
{
    const std::string what = "cannot publish " + _topic._name;
    _writerID = ends._writerID;
    _ddsTopic =
        DdsEntity(dds_create_topic(ends._participant, &_descriptor, _topic._name.c_str(), ends._qos, nullptr), what);
    _writer = DdsEntity(dds_create_writer(ends._publisher, _ddsTopic.get(), ends._qos, nullptr), what);
}

DdsOutLane::Outcome DdsOutLane::send()
{
    if (!_pending) {
        std::string problem;
        _pending = takeSample(problem);
        if (!_pending)
            return Outcome::NothingWaits;
        if (!problem.empty()) {
            fail(problem);
            return Outcome::Sent;
        }
        *_pending->_origin = {_pending->_stamp, _writerID, ++_number};
    }
    const DdsLog::Listening log;
    const dds_return_t result = dds_write(_writer.get(), _pending->_sample);
    if (!log.text().empty())
        complain(log.text());
    if (result == DDS_RETCODE_TIMEOUT) {
        _counters._delays.add();
        return Outcome::TryLater;
    }
    if (result != DDS_RETCODE_OK) {
        fail(dds_strretcode(result));
        return Outcome::Sent;
    }
    _counters._samples.add();
    _pending.reset();
    return Outcome::Sent;
}

void DdsOutLane::fail(const std::string& problem)
{
    _pending.reset();
    _counters._failed.add();
    complain("a record cannot be sent: " + problem);
}

void DdsOutLane::complain(const std::string& problem)
{
    if (const auto withheld = _reports.admit())
        report(osg::LogWarning, "DDS: topic " + _topic._name + ": " + problem +
                                    (*withheld ? " (and " + std::to_string(*withheld) + " more before it)" : ""));
}

} // namespace Trovio::Nodes
