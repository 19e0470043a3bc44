#include "nodes/dds/DdsSession.h"

#include "nodes/shared/RoundRobin.h"
#include "trovio/BasicInSlot.h"
#include <algorithm>
#include <random>

namespace Trovio::Nodes {

namespace {

constexpr double timingPeriod = 1.0; // seconds
constexpr double signsALease = 3.0;  // of life, so that two may be lost
constexpr int mostExplained = 16;    // topics that others' names are compared with at one look

std::uint64_t randomID()
{
    std::random_device source;
    return std::uint64_t(source()) << 32U | source();
}

} // namespace

DdsSession::DdsSession(Clock& clock, DdsSettings settings, DdsOutCounters& out, DdsInCounters& in,
                       std::function<void()> wake, std::function<void()> peersChanged)
    : _clock(clock),
      _settings(std::move(settings)),
      _ends{nullptr,
            0,
            0,
            0,
            _settings._quality,
            randomID(),
            std::move(wake),
            std::move(peersChanged),
            _settings._timing ? &_clocks : nullptr},
      _hosts(_settings._domain._hosts, NameLookup::system()),
      _watch(_settings._quality, _settings._format, _settings._published, _settings._subscribed),
      _clocks(clock, _ends._writerID,
              {_settings._timing && !_settings._subscribed.empty(), _settings._timing && !_settings._published.empty()})
{
    for (const ListedSlot& topic : _settings._published)
        _outLanes.push_back(DdsOutLane::create(
            topic, _settings._format, static_cast<unsigned>(_settings._quality._depth), out, clock, _ends._wake));
    for (const ListedSlot& topic : _settings._subscribed)
        _inLanes.push_back(DdsInLane::create(topic, _settings._format, in, clock));
}

DdsSession::~DdsSession()
{
    close();
}

void DdsSession::forEachInSlot(const std::function<void(BasicInSlot&)>& use)
{
    for (const auto& lane : _outLanes)
        use(lane->getSlot());
}

void DdsSession::forEachOutSlot(const std::function<void(BasicOutSlot&)>& use)
{
    for (const auto& lane : _inLanes) {
        use(lane->getSlot());
        use(lane->getAliveSlot());
        if (_settings._timing)
            use(lane->getTimingSlot());
    }
}

bool DdsSession::open()
{
    auto hosts = _hosts.find();
    if (!hosts)
        return false;
    DdsDomainSettings domain = _settings._domain;
    domain._hosts = std::move(*hosts);
    _domain = DdsDomain::open(domain);
    try {
        openTopics();
    } catch (const DdsProblem&) {
        close();
        throw;
    }
    return true;
}

void DdsSession::openTopics()
{
    const std::string what = "cannot take part in " + _settings._domain.describe();
    _participant = DdsEntity(dds_create_participant(_settings._domain._number, nullptr, nullptr), what);
    const DdsQos group = makeGroupQos(_settings._quality);
    _ends._domain = _domain.get();
    _ends._participant = _participant.get();
    _ends._publisher = dds_create_publisher(_participant.get(), group.get(), nullptr);
    _ends._subscriber = dds_create_subscriber(_participant.get(), group.get(), nullptr);
    if (_ends._publisher < 0 || _ends._subscriber < 0)
        throw DdsProblem(what + ": " + dds_strretcode(std::min(_ends._publisher, _ends._subscriber)));
    _watch.open(_ends);
    _clocks.open(_ends);
    for (const auto& lane : _outLanes)
        lane->open(_ends);
    for (const auto& lane : _inLanes)
        lane->open(_ends);
}

void DdsSession::close()
{
    _hosts.cancel();
    _watch.close();
    _clocks.close();
    for (const auto& lane : _outLanes)
        lane->close();
    for (const auto& lane : _inLanes)
        lane->close();
    _participant = DdsEntity();
    _domain.reset();
}

bool DdsSession::sendWaiting()
{
    return takeInTurn(
        _outLanes, [](DdsOutLane& lane) { return lane.send(); }, [] { return true; });
}

void DdsSession::lookAround()
{
    _watch.look();
    for (const auto& lane : _outLanes)
        lane->lookForReaders();
    for (const auto& lane : _inLanes)
        lane->lookForWriters();
}

std::optional<double> DdsSession::compareClocks()
{
    const auto next = _clocks.work();
    if (!_settings._timing || _inLanes.empty())
        return next;
    if (const double now = _clock.now(); now >= _nextTiming) {
        for (const auto& lane : _inLanes)
            lane->pushTiming(_clocks, _clock.wallTime());
        _nextTiming = now + timingPeriod;
    }
    return std::min(next.value_or(_nextTiming), _nextTiming);
}

std::vector<RemarkInfo> DdsSession::getRemarks() const
{
    std::vector<RemarkInfo> remarks;
    const double now = _clock.wallTime().getSeconds();
    for (const auto& lane : _inLanes) {
        const std::string& topic = lane->getTopic()._name;
        if (const auto newest = lane->getNewest())
            remarks.push_back({topic, describeTiming(*newest, _clocks.look(newest->_writer, now), now)});
        else if (lane->isAlive() && lane->getSlot().getActivity()._written == 0)
            remarks.push_back({topic, "who publishes it is there, but nothing has come yet"});
    }
    return remarks;
}

std::optional<double> DdsSession::takeNewcomers()
{
    std::optional<double> next;
    for (const auto& lane : _inLanes)
        if (const auto due = lane->takeNewcomers())
            next = std::min(next.value_or(*due), *due);
    return next;
}

std::optional<double> DdsSession::showLife()
{
    if (_outLanes.empty())
        return std::nullopt;
    if (const double now = _clock.now(); now >= _nextSign) {
        dds_assert_liveliness(_participant.get());
        _nextSign = now + _settings._quality._lease / signsALease;
    }
    return _nextSign;
}

DdsTroubles DdsSession::getTroubles(bool isEarly) const
{
    DdsTroubles troubles;
    _watch.tell(troubles);
    const std::string where = " in " + _domain->describe();
    int explained = 0;
    for (const auto& lane : _inLanes) {
        const std::string& topic = lane->getTopic()._name;
        if (lane->isSilent())
            troubles.add(
                topic, "who publishes ",
                " has given no sign of life for its lease; it may not hear this machine: look at the line and at "
                "firewalls");
        else if (!lane->isAlive()) {
            const std::string why = explained++ < mostExplained ? _watch.explainMissing(topic) : "";
            if (isEarly)
                troubles.note(topic, "nobody publishes it so far" + where + why);
            else
                troubles.add(topic, "nobody publishes ", where + why);
        }
    }
    for (const auto& lane : _outLanes)
        if (!lane->isHeard() && explained++ < mostExplained)
            if (const std::string wanting = _watch.findWanting(lane->getTopic()._name); !wanting.empty())
                troubles.note(lane->getTopic()._name, wanting);
    return troubles;
}

} // namespace Trovio::Nodes
