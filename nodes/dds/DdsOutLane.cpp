#include "nodes/dds/DdsOutLane.h"

#include "nodes/dds/DdsLog.h"
#include "nodes/dds/DdsTaking.h"
#include "nodes/dds/WireValue.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/SlotTypes.h"
#include <atomic>

namespace Trovio::Nodes {

namespace {

constexpr double reportPeriod = 1.0; // seconds
// A write waits only where more than half a megabyte waits for readers.
constexpr std::size_t mostWaitingOfQuick = 262144; // bytes
constexpr std::uint32_t mostReadersOfQuick = 2;    // each may take a packet of its own
constexpr int mostAtOnce = 4;                      // records that other threads have pushed meanwhile

/// Bytes of that many samples, unless their size depends on their value.
template <class T>
std::optional<std::size_t> sizeOf(unsigned samples)
{
    using Sample = typename WireType<T>::Sample;
    constexpr bool isFixed = std::is_trivially_copyable_v<T>;
    return isFixed ? std::optional(samples * sizeof(Sample)) : std::nullopt;
}

template <class T>
class TypedOutLane final : public DdsOutLane, SlotListener {
public:
    TypedOutLane(const ListedSlot& topic, unsigned capacity, DdsOutCounters& counters, Clock& clock,
                 std::function<void()> arrived)
        : DdsOutLane(topic, WireType<T>::descriptor(), sizeOf<T>(capacity), counters, clock),
          _arrived(std::move(arrived)),
          _slot(topic._name, capacity)
    {
        _slot.setListener(this);
    }

    BasicInSlot& getSlot() override { return _slot; }

private:
    std::optional<Sample> takeSample(std::string& problem) override OSTREL_REQUIRES(_sendLock)
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
        if (!sendAtOnce())
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

DdsOutLane::DdsOutLane(const ListedSlot& topic, const dds_topic_descriptor_t& descriptor,
                       std::optional<std::size_t> mostWaiting, DdsOutCounters& counters, Clock& clock)
    : _topic(topic),
      _descriptor(descriptor),
      _counters(counters),
      _isSmall(mostWaiting && *mostWaiting <= mostWaitingOfQuick),
      _reports(clock, reportPeriod)
{
}

void DdsOutLane::open(const DdsEnds& ends)
{
    const std::string what = "cannot publish " + _topic._name;
    const DdsListener listener(dds_create_listener(this));
    dds_lset_publication_matched(listener.get(), onMatched);
    _wake = ends._wake;
    _isLocal = ends._domain->getSettings().isLoopback();
    const Ostrel::LockGuard guard(_sendLock);
    _writerID = ends._writerID;
    _localTopic = ends._domain->getTopic(_topic._name);
    _ddsTopic =
        DdsEntity(dds_create_topic(ends._participant, &_descriptor, _topic._name.c_str(), ends._qos, nullptr), what);
    _writer = DdsEntity(dds_create_writer(ends._publisher, _ddsTopic.get(), ends._qos, listener.get()), what);
}

void DdsOutLane::close()
{
    _isQuick = false;
    const Ostrel::LockGuard guard(_sendLock);
    _writer = DdsEntity();
}

void DdsOutLane::onMatched(dds_entity_t, dds_publication_matched_status_t, void* lane) noexcept
{
    static_cast<DdsOutLane*>(lane)->_wake();
}

void DdsOutLane::lookForReaders()
{
    dds_publication_matched_status_t status{};
    const Ostrel::LockGuard guard(_sendLock);
    const bool isKnown = dds_get_publication_matched_status(_writer.get(), &status) == DDS_RETCODE_OK;
    _isQuick = _isSmall && _isLocal && isKnown && status.current_count <= mostReadersOfQuick;
}

bool DdsOutLane::sendAtOnce() noexcept
{
    if (!_isQuick || !_sendLock.tryLock())
        return false;
    auto outcome = Outcome::TryLater;
    if (_writer.isOpen())
        _localTopic->writeUnread([this, &outcome]() OSTREL_NO_THREAD_SAFETY_ANALYSIS {
            outcome = Outcome::Sent;
            for (int i = 0; i < mostAtOnce && outcome == Outcome::Sent; ++i)
                outcome = sendOne();
        });
    _sendLock.unlock();
    return outcome == Outcome::NothingWaits;
}

DdsOutLane::Outcome DdsOutLane::send()
{
    const Ostrel::LockGuard guard(_sendLock);
    return sendOne();
}

DdsOutLane::Outcome DdsOutLane::sendOne()
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
