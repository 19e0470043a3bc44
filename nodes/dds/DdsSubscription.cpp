#include "nodes/dds/DdsSubscription.h"

#include "nodes/dds/net/DdsSamples.h"
#include "nodes/dds/wire/DdsSerialised.h"
#include "nodes/shared/Report.h"
#include <utility>

namespace Trovio::Nodes {

DdsSubscription::DdsSubscription(const ListedSlot& topic, const DdsFormat& format,
                                 const dds_topic_descriptor_t& descriptor, DdsInCounters& counters, Clock& clock)
    : _topic(topic),
      _name(format.nameOf(topic._name)),
      _descriptor(descriptor),
      _counters(counters),
      _clock(clock),
      _aliveSlot(topic._name + "/alive"),
      _timingSlot(topic._name + "/timing"),
      _reports(clock),
      _shortage(clock, counters._withoutMemory, "DDS: topic " + topic._name)
{
    _aliveSlot.setWrittenOnChange();
}

void DdsSubscription::open(const DdsParticipant& participant)
{
    _wake = participant._wake;
    _peersChanged = participant._peersChanged;
    _getsLast = participant._quality._lateJoiners;
    _clocks = participant._clocks;
    const std::string what = "cannot subscribe to " + _topic._name;
    const DdsListener listener(dds_create_listener(this));
    dds_lset_data_available(listener.get(), onData);
    dds_lset_liveliness_changed(listener.get(), onLiveliness);
    _ddsTopic = DdsEntity(dds_create_topic(participant._entity, &_descriptor, _name.c_str(), nullptr, nullptr), what);
    _localTopic = participant._domain->getTopic(_name);
    _localTopic->addReader();
    const DdsQos qos = makeReaderQos(participant._quality);
    _reader = DdsEntity(dds_create_reader(participant._subscriber, _ddsTopic.get(), qos.get(), listener.get()), what);
}

void DdsSubscription::close()
{
    _reader = DdsEntity();
    _ddsTopic = DdsEntity();
    {
        const Ostrel::LockGuard guard(_takeLock);
        _newWriters.clear();
    }
    if (const auto topic = std::exchange(_localTopic, nullptr))
        topic->removeReader();
    if (_alive)
        setAlive(false);
}

void DdsSubscription::updateWriters()
{
    dds_liveliness_changed_status_t status{};
    dds_get_liveliness_changed_status(_reader.get(), &status);
    _isLeaseExpired = status.alive_count == 0 && status.not_alive_count > 0;
    setAlive(status.alive_count > 0);
}

void DdsSubscription::pushTiming(DdsClocks& clocks, const Time& now)
{
    const auto newest = getNewest();
    if (!newest)
        return;
    if (isAlive())
        clocks.want(newest->_writer);
    if (const auto clock = clocks.getKnowledge(newest->_writer, now.getSeconds())._estimate) {
        const ValueTiming timing(*newest, *clock, now.getSeconds());
        _timingSlot.push(Data<Vec3<double>>({timing._delay, timing._age, timing._bound}, now));
    }
}

std::optional<SampleArrival> DdsSubscription::getNewest() const
{
    const Ostrel::LockGuard guard(_newestLock);
    return _newest;
}

void DdsSubscription::setAlive(bool alive)
{
    if (alive == _alive)
        return;
    _alive = _isAlive = alive;
    _aliveSlot.push(Data<bool>(alive, _clock.wallTime()));
}

void DdsSubscription::onData(dds_entity_t reader, void* subscription) noexcept
{
    static_cast<DdsSubscription*>(subscription)->takeAll(reader);
}

void DdsSubscription::onLiveliness(dds_entity_t, dds_liveliness_changed_status_t, void* subscription) noexcept
{
    static_cast<DdsSubscription*>(subscription)->_peersChanged();
}

void DdsSubscription::takeAll(dds_entity_t reader)
{
    bool isHeld = false;
    {
        const Ostrel::LockGuard guard(_takeLock);
        const auto use = [&](DdsSerialised serialised, const dds_sample_info_t& info) OSTREL_NO_THREAD_SAFETY_ANALYSIS {
            // Under the lock: this runs before takeSerialised() returns.
            DdsNewWriters::Sample sample{std::move(serialised), info, _clock.wallTime().getSeconds()};
            _shortage.survives([&]() OSTREL_NO_THREAD_SAFETY_ANALYSIS {
                if (!_getsLast || _sequences.knows(info.publication_handle))
                    return take(sample);
                _newWriters.hold(std::move(sample), _clock.now());
                isHeld = true;
            });
        };
        takeSerialised(reader, use);
    }
    if (isHeld)
        _wake();
}

std::optional<double> DdsSubscription::takeNewWriters()
{
    std::map<dds_instance_handle_t, SequenceTracker::Guid> due;
    {
        const Ostrel::LockGuard guard(_takeLock);
        for (const dds_instance_handle_t writer : _newWriters.findDue(_clock.now()))
            due[writer];
    }
    // Without the lock: those who wait for it in a listener hold locks of the library.
    for (auto& [writer, guid] : due)
        guid = guidOf(writer);
    const Ostrel::LockGuard guard(_takeLock);
    for (const auto& [writer, guid] : due) {
        _sequences.introduce(writer, guid);
        for (const auto& sample : _newWriters.release(writer, _clock.now()))
            _shortage.survives([&]() OSTREL_NO_THREAD_SAFETY_ANALYSIS { take(sample); });
    }
    return _newWriters.nextDue();
}

void DdsSubscription::take(const DdsNewWriters::Sample& sample)
{
    const auto origin = read(*sample._serialised, sample._info);
    if (!origin)
        return refuse("it cannot be deserialised as its type");
    // Negated, so that NaN is refused, too.
    if (!(origin->stamp >= 0.0 && origin->stamp < endOfDates))
        return refuse("its time stamp is " + std::to_string(origin->stamp) + " seconds since 1970");
    const auto [isNew, missed] = _sequences.note({sample._info.publication_handle, origin->writer}, origin->number);
    _counters._missed.add(missed);
    if (!isNew) {
        _counters._repeated.add();
        return;
    }
    if (const std::string problem = deliver(Time(origin->stamp)); !problem.empty())
        return refuse("it holds " + problem);
    _counters._samples.add();
    if (_clocks)
        noteNewest({origin->writer, origin->stamp, sample._arrived});
}

void DdsSubscription::noteNewest(const SampleArrival& arrival)
{
    bool isOther = false;
    {
        const Ostrel::LockGuard guard(_newestLock);
        isOther = !_newest || _newest->_writer != arrival._writer;
        _newest = arrival;
    }
    if (isOther)
        _clocks->want(arrival._writer);
}

SequenceTracker::Guid DdsSubscription::guidOf(dds_instance_handle_t writer) const
{
    SequenceTracker::Guid guid{};
    if (dds_builtintopic_endpoint_t* end = dds_get_matched_publication_data(_reader.get(), writer)) {
        std::copy_n(end->key.v, guid.size(), guid.begin());
        dds_builtintopic_free_endpoint(end);
    }
    return guid;
}

void DdsSubscription::refuse(const std::string& problem)
{
    _counters._refused.add();
    if (const auto more = _reports.admit())
        report(osg::LogWarning,
               "DDS: a sample of " + _topic._name + " (" + _topic._typeName + ") is refused: " + problem + *more);
}

} // namespace Trovio::Nodes
