#include "nodes/dds/DdsSession.h"

#include "nodes/dds/TypedTopics.h"
#include "nodes/shared/RoundRobin.h"
#include "trovio/BasicInSlot.h"
#include <algorithm>
#include <limits>
#include <random>

namespace Trovio::Nodes {

namespace {

constexpr double timingPeriod = 1.0;       // seconds
constexpr double assertionsPerLease = 3.0; // of liveliness, so that two may be lost
constexpr int maxExplained = 16;           // topics that others' names are compared with at one update

std::uint64_t randomID()
{
    std::random_device source;
    return std::uint64_t(source()) << 32U | source();
}

RemarkInfo::SourceClock sourceClock(const PeerClocks::Knowledge& clock)
{
    if (clock._estimate)
        return {clock._estimate->_offset, clock._estimate->_bound};
    return {0.0, std::numeric_limits<double>::infinity()};
}

} // namespace

DdsSession::DdsSession(Clock& clock, DdsSettings settings, DdsOutCounters& out, DdsInCounters& in,
                       std::function<void()> wake, std::function<void()> peersChanged)
    : _clock(clock),
      _settings(std::move(settings)),
      _participant{nullptr,
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
      _clocks(clock, _participant._writerID,
              {_settings._timing && !_settings._subscribed.empty(), _settings._timing && !_settings._published.empty()})
{
    for (const ListedSlot& topic : _settings._published)
        _publications.push_back(createPublication(topic, _settings._format,
                                                  static_cast<unsigned>(_settings._quality._depth), out, clock,
                                                  _participant._wake));
    for (const ListedSlot& topic : _settings._subscribed)
        _subscriptions.push_back(createSubscription(topic, _settings._format, in, clock));
}

DdsSession::~DdsSession()
{
    close();
}

void DdsSession::forEachInSlot(const std::function<void(BasicInSlot&)>& use)
{
    for (const auto& publication : _publications)
        use(publication->getSlot());
}

void DdsSession::forEachOutSlot(const std::function<void(BasicOutSlot&)>& use)
{
    for (const auto& subscription : _subscriptions) {
        use(subscription->getSlot());
        use(subscription->getAliveSlot());
        if (_settings._timing)
            use(subscription->getTimingSlot());
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
    } catch (...) { // also without memory: what is open in part must not count as open
        close();
        throw;
    }
    return true;
}

void DdsSession::openTopics()
{
    const std::string what = "cannot take part in " + _settings._domain.describe();
    _participantEntity = DdsEntity(dds_create_participant(_settings._domain._number, nullptr, nullptr), what);
    const DdsQos group = makeGroupQos(_settings._quality);
    _participant._domain = _domain.get();
    _participant._entity = _participantEntity.get();
    _participant._publisher = dds_create_publisher(_participantEntity.get(), group.get(), nullptr);
    _participant._subscriber = dds_create_subscriber(_participantEntity.get(), group.get(), nullptr);
    if (_participant._publisher < 0 || _participant._subscriber < 0)
        throw DdsProblem(what + ": " + dds_strretcode(std::min(_participant._publisher, _participant._subscriber)));
    _watch.open(_participant);
    _clocks.open(_participant);
    for (const auto& publication : _publications)
        publication->open(_participant);
    for (const auto& subscription : _subscriptions)
        subscription->open(_participant);
}

void DdsSession::close()
{
    _hosts.cancel();
    _watch.close();
    _clocks.close();
    for (const auto& publication : _publications)
        publication->close();
    for (const auto& subscription : _subscriptions)
        subscription->close();
    _participantEntity = DdsEntity();
    _domain.reset();
}

bool DdsSession::sendWaiting()
{
    return takeInTurn(
        _publications, [](DdsPublication& publication) { return publication.send(); }, [] { return true; });
}

void DdsSession::update()
{
    _watch.update();
    for (const auto& publication : _publications)
        publication->updateReaders();
    for (const auto& subscription : _subscriptions)
        subscription->updateWriters();
}

std::optional<double> DdsSession::compareClocks()
{
    const auto next = _clocks.work();
    if (!_settings._timing || _subscriptions.empty())
        return next;
    if (const double now = _clock.now(); now >= _nextTiming) {
        for (const auto& subscription : _subscriptions)
            subscription->pushTiming(_clocks, _clock.wallTime());
        _nextTiming = now + timingPeriod;
    }
    return std::min(next.value_or(_nextTiming), _nextTiming);
}

std::vector<RemarkInfo> DdsSession::getRemarks() const
{
    std::vector<RemarkInfo> remarks;
    const double now = _clock.wallTime().getSeconds();
    for (const auto& subscription : _subscriptions) {
        const std::string& topic = subscription->getTopic()._name;
        if (const auto newest = subscription->getNewest()) {
            const PeerClocks::Knowledge clock = _clocks.getKnowledge(newest->_writer, now);
            remarks.push_back({topic, describeTiming(*newest, clock, now), sourceClock(clock)});
        } else if (subscription->isAlive() && subscription->getSlot().getActivity()._written == 0)
            remarks.push_back({topic, "it has a publisher, but no sample has come yet"});
    }
    return remarks;
}

std::optional<double> DdsSession::takeNewWriters()
{
    std::optional<double> next;
    for (const auto& subscription : _subscriptions)
        if (const auto due = subscription->takeNewWriters())
            next = std::min(next.value_or(*due), *due);
    return next;
}

std::optional<double> DdsSession::assertLiveliness()
{
    if (_publications.empty())
        return std::nullopt;
    if (const double now = _clock.now(); now >= _nextAssertion) {
        dds_assert_liveliness(_participantEntity.get());
        _nextAssertion = now + _settings._quality._lease / assertionsPerLease;
    }
    return _nextAssertion;
}

DdsTopicProblems DdsSession::getTopicProblems(bool isEarly) const
{
    DdsTopicProblems problems;
    _watch.tell(problems);
    const std::string where = " in " + _domain->describe();
    int explained = 0;
    for (const auto& subscription : _subscriptions) {
        const std::string& topic = subscription->getTopic()._name;
        if (subscription->isLeaseExpired())
            problems.add(topic, "publisher of ",
                         ": liveliness lease expired; it may not hear this machine: check the network and firewalls");
        else if (!subscription->isAlive()) {
            const std::string why = explained++ < maxExplained ? _watch.explainMissing(topic) : "";
            if (isEarly)
                problems.note(topic, "nobody publishes it so far" + where + why);
            else
                problems.add(topic, "nobody publishes ", where + why);
        }
    }
    for (const auto& publication : _publications)
        if (!publication->hasReaders() && explained++ < maxExplained)
            if (const std::string wanting = _watch.findWanting(publication->getTopic()._name); !wanting.empty())
                problems.note(publication->getTopic()._name, wanting);
    return problems;
}

} // namespace Trovio::Nodes
