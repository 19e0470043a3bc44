#pragma once

#include "nodes/dds/DdsPublication.h"
#include "nodes/dds/DdsSettings.h"
#include "nodes/dds/DdsSubscription.h"
#include "nodes/dds/clocks/DdsClocks.h"
#include "nodes/dds/net/DdsDomain.h"
#include "nodes/dds/net/HostNames.h"
#include "nodes/dds/watch/DdsMatchWatch.h"

namespace Trovio::Nodes {

/// A node's topics, with their slots, and its part in the domain while it is open.
/// Threads: one; the slots are for any thread.
class DdsSession {
public:
    /// wake is called where there is something to do, peersChanged where peers appeared or disappeared; both from any
    /// thread, under any lock.
    DdsSession(Clock& clock, DdsSettings settings, DdsOutCounters& out, DdsInCounters& in, std::function<void()> wake,
               std::function<void()> peersChanged);
    ~DdsSession();

    const DdsSettings& getSettings() const { return _settings; }
    void forEachInSlot(const std::function<void(BasicInSlot&)>& use);
    void forEachOutSlot(const std::function<void(BasicOutSlot&)>& use);

    /// False while hosts are looked up: call it again soon. Throws DdsProblem or std::bad_alloc, and is closed then.
    bool open();
    /// The domain that is open, with the addresses of its hosts.
    const DdsDomain& getDomain() const { return *_domain; }
    bool isOpen() const { return _participantEntity.isOpen(); }
    /// Afterwards nothing is pushed.
    void close();

    /// Sends what waits, for a while. True if there may be more at once.
    bool sendWaiting();
    /// Reads which peers appeared and disappeared.
    void update();
    /// Asserts the liveliness of what is published, if it is time; when it will be again.
    std::optional<double> assertLiveliness();

    /// Compares clocks, and tells how old values are; when to do so again.
    std::optional<double> compareClocks();

    /// Delivers the samples of new writers that were held back long enough; when to do so again.
    std::optional<double> takeNewWriters();

    /// The problems of topics. isEarly: one that nobody publishes is no problem yet.
    DdsTopicProblems getTopicProblems(bool isEarly) const;

    /// How old the newest values are. Any thread, under any lock but the log's.
    std::vector<RemarkInfo> getRemarks() const;

private:
    void openTopics();

    Clock& _clock;
    const DdsSettings _settings;
    DdsParticipant _participant;
    HostNames _hosts;
    std::vector<std::unique_ptr<DdsPublication>> _publications;
    std::vector<std::unique_ptr<DdsSubscription>> _subscriptions;
    DdsMatchWatch _watch;
    DdsClocks _clocks;
    double _nextTiming = 0.0;
    double _nextAssertion = 0.0;

    std::shared_ptr<DdsDomain> _domain;
    DdsEntity _participantEntity; // goes before the domain
};

} // namespace Trovio::Nodes
