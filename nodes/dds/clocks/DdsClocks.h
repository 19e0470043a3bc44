#pragma once

#include "SlotSamples.h" // generated
#include "base/Mutex.h"
#include "nodes/dds/clocks/PeerClocks.h"
#include "nodes/dds/net/DdsParticipant.h"
#include "nodes/shared/Clock.h"
#include <deque>

namespace Trovio::Nodes {

/// Asks the clocks of those who publish, and answers those who subscribe. Time stamps stay as their source wrote them;
/// this tells how they read here.
/// Questions name who is to answer. Everybody in the domain gets them all, and the answers, so they are sent less often
/// the more endpoints there are: what travels in the domain is bounded, however many machines it has.
/// Threads: one; want() and getKnowledge() from any.
class DdsClocks {
public:
    struct Roles {
        bool _asks;
        bool _answers;
    };

    /// id: the number under which this node writes.
    DdsClocks(Clock& clock, std::uint64_t id, Roles roles) : _clock(clock), _id(id), _roles(roles) {}

    /// Throws DdsProblem.
    void open(const DdsParticipant& participant);
    /// Keeps the estimates.
    void close();

    /// Answers what was asked, and asks where it is time; when it will be again.
    std::optional<double> work();

    /// A value of that writer is there, so that its clock matters. While this is open.
    void want(std::uint64_t writer) OSTREL_EXCLUDES(_lock);

    /// The estimate of that writer's clock. now: our date. Under any lock but the log's.
    PeerClocks::Knowledge getKnowledge(std::uint64_t writer, double now) const OSTREL_EXCLUDES(_lock);

private:
    using Probe = Trovio_Wire_ClockProbe;
    static void onQuestion(dds_entity_t reader, void* clocks) noexcept;
    static void onAnswer(dds_entity_t reader, void* clocks) noexcept;
    static void onAnswererChange(dds_entity_t, dds_subscription_matched_status_t status, void* clocks) noexcept;
    void takeQuestion(const Probe& probe, double arrived) OSTREL_EXCLUDES(_lock);
    void takeAnswer(const Probe& probe, std::uint64_t sender, double arrived) OSTREL_EXCLUDES(_lock);
    std::optional<Probe> nextQuestion() OSTREL_EXCLUDES(_lock);
    std::optional<double> ask() OSTREL_EXCLUDES(_lock);
    double minPeriod() const OSTREL_EXCLUDES(_lock);
    double date() const { return _clock.wallTime().getSeconds(); }

    Clock& _clock;
    const std::uint64_t _id;
    const Roles _roles;
    bool _multicast = false;
    std::function<void()> _wake;
    double _earliestAsking = 0.0;

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::deque<Probe> _questions OSTREL_GUARDED_BY(_lock);
    double _second OSTREL_GUARDED_BY(_lock) = 0.0;   // in which questions were taken last
    std::size_t _taken OSTREL_GUARDED_BY(_lock) = 0; // questions, in that second
    PeerClocks _peers OSTREL_GUARDED_BY(_lock);
    double _askers OSTREL_GUARDED_BY(_lock) = 0.0; // as the last answer says

    DdsEntity _questionTopic, _answerTopic, _questionWriter, _answerWriter;
    DdsEntity _questionReader, _answerReader; // last: go first, and with them the listeners
};

} // namespace Trovio::Nodes
