#include "nodes/dds/DdsPublication.h"

#include "nodes/dds/net/DdsLog.h"
#include "nodes/dds/net/DdsSamples.h"
#include "nodes/dds/wire/WireItem.h"
#include "nodes/shared/Report.h"
#include <new>
#include <utility>

namespace Trovio::Nodes {

namespace {

constexpr double maxStamp = 4294967296.0;     // seconds since 1970, which the protocol counts in 32 bits
constexpr std::uint32_t maxReadersAtOnce = 2; // each may take a packet of its own
constexpr int maxRecordsAtOnce = 4;           // records that other threads have pushed meanwhile

} // namespace

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
                _counters._failed.add(); // a record that was taken; no memory to say why it cannot be sent
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
    // No memory to say so; the counters tell.
}

void DdsPublication::tell(const std::string& complaint) const
try {
    if (!complaint.empty())
        report(osg::LogWarning, "DDS: topic " + _topic._name + ": " + complaint);
} catch (const std::bad_alloc&) {
    // As above.
}

} // namespace Trovio::Nodes
