#include "nodes/dds/DdsPublication.h"

#include "nodes/dds/net/DdsLog.h"
#include "nodes/dds/net/DdsSamples.h"
#include "nodes/dds/wire/RosValue.h"
#include "nodes/shared/Report.h"
#include "nodes/shared/SendQueue.h"
#include "trovio/SlotTypes.h"
#include <utility>

namespace Trovio::Nodes {

namespace {

constexpr double maxStamp = 4294967296.0;     // seconds since 1970, which the protocol counts in 32 bits
constexpr std::uint32_t maxReadersAtOnce = 2; // each may take a packet of its own
constexpr int maxRecordsAtOnce = 4;           // records that other threads have pushed meanwhile

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

std::unique_ptr<DdsPublication> DdsPublication::create(const ListedSlot& topic, const DdsFormat& format,
                                                       unsigned capacity, DdsOutCounters& counters, Clock& clock,
                                                       std::function<void()> arrived)
{
    std::unique_ptr<DdsPublication> publication;
    const auto make = [&]<class T, class Value>(TypeTag<T>, TypeTag<Value>) {
        publication =
            std::make_unique<TypedPublication<T, Value>>(topic, format, capacity, counters, clock, std::move(arrived));
    };
    withFormat(topic._typeName, format, make);
    return publication;
}

DdsPublication::DdsPublication(const ListedSlot& topic, const DdsFormat& format,
                               const dds_topic_descriptor_t& descriptor, bool isSmall, DdsOutCounters& counters,
                               Clock& clock)
    : _topic(topic),
      _name(format.nameOf(topic._name)),
      _descriptor(descriptor),
      _counters(counters),
      _isSmall(isSmall),
      _reports(clock)
{
}

void DdsPublication::open(const DdsParticipant& participant)
{
    const std::string what = "cannot publish " + _topic._name;
    const DdsListener listener(dds_create_listener(this));
    dds_lset_publication_matched(listener.get(), onMatched);
    _peersChanged = participant._peersChanged;
    _isLocal = participant._domain->getSettings().isLoopback();
    const Ostrel::LockGuard guard(_sendLock);
    _writerID = participant._writerID;
    _localTopic = participant._domain->getTopic(_name);
    _ddsTopic = DdsEntity(dds_create_topic(participant._entity, &_descriptor, _name.c_str(), nullptr, nullptr), what);
    const DdsQos qos = makeWriterQos(participant._quality);
    _writer = DdsEntity(dds_create_writer(participant._publisher, _ddsTopic.get(), qos.get(), listener.get()), what);
    if (_last)
        write(*_last);
}

void DdsPublication::close()
{
    _isQuick = false;
    std::string complaint;
    {
        const Ostrel::LockGuard guard(_sendLock);
        _writer = DdsEntity();
        _ddsTopic = DdsEntity();
        _localTopic.reset();
        complaint = std::exchange(_complaint, {});
    }
    tell(complaint);
}

void DdsPublication::onMatched(dds_entity_t, dds_publication_matched_status_t, void* publication) noexcept
{
    static_cast<DdsPublication*>(publication)->_peersChanged();
}

void DdsPublication::updateReaders()
{
    dds_publication_matched_status_t status{};
    const Ostrel::LockGuard guard(_sendLock);
    const bool isKnown = dds_get_publication_matched_status(_writer.get(), &status) == DDS_RETCODE_OK;
    _hasReaders = isKnown && status.current_count > 0;
    _isQuick = _isSmall && _isLocal && isKnown && status.current_count <= maxReadersAtOnce;
}

bool DdsPublication::sendAtOnce() noexcept
{
    if (!_isQuick || !_sendLock.tryLock())
        return false;
    bool mayWait = true;
    if (_writer.isOpen())
        _localTopic->writeUnread([this, &mayWait]() OSTREL_NO_THREAD_SAFETY_ANALYSIS {
            try {
                for (int i = 0; i < maxRecordsAtOnce && mayWait; ++i)
                    mayWait = sendOne();
            } catch (const std::bad_alloc&) {
                _counters._failed.add(); // a record that was taken, but not even told why it cannot be sent
            }
        });
    const bool isDone = !mayWait && _complaint.empty();
    _sendLock.unlock();
    return isDone;
}

bool DdsPublication::send()
{
    bool isSent = false;
    std::string complaint;
    {
        const Ostrel::LockGuard guard(_sendLock);
        isSent = sendOne();
        complaint = std::exchange(_complaint, {});
    }
    tell(complaint);
    return isSent;
}

bool DdsPublication::sendOne()
{
    std::string problem;
    const auto sample = takeSample(_last ? _last->_sample : nullptr, problem);
    if (!sample)
        return false;
    if (!problem.empty()) {
        fail(problem);
        return true;
    }
    if (sample->_origin)
        *sample->_origin = {sample->_stamp, _writerID, ++_number};
    if (write(*sample)) {
        _counters._samples.add();
        _last = sample;
    }
    return true;
}

bool DdsPublication::write(const Sample& sample)
{
    const DdsLog::Listening log;
    // The library carries the stamp beside samples that have no room for it.
    const bool isBeside = !sample._origin && sample._stamp >= 0.0 && sample._stamp < maxStamp;
    const dds_return_t result = isBeside ? dds_write_ts(_writer.get(), sample._sample, toDdsDuration(sample._stamp))
                                         : dds_write(_writer.get(), sample._sample);
    if (result != DDS_RETCODE_OK)
        fail(log.text().empty() ? std::string_view(dds_strretcode(result)) : std::string_view(log.text()));
    else if (!log.text().empty())
        complain("", log.text());
    return result == DDS_RETCODE_OK;
}

void DdsPublication::fail(std::string_view problem)
{
    _counters._failed.add();
    complain("a record cannot be sent: ", problem);
}

void DdsPublication::complain(std::string_view before, std::string_view problem) noexcept
try {
    if (const auto more = _reports.admit())
        _complaint = std::string(before) + std::string(problem) + *more;
} catch (const std::bad_alloc&) {
    // Not even for saying so; the counters tell.
}

void DdsPublication::tell(const std::string& complaint) const
{
    if (!complaint.empty())
        report(osg::LogWarning, "DDS: topic " + _topic._name + ": " + complaint);
}

} // namespace Trovio::Nodes
