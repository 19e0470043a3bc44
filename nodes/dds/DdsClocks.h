#pragma once

#include "SlotSamples.h" // generated
#include "base/Mutex.h"
#include "nodes/dds/ClockOffset.h"
#include "nodes/dds/DdsEnds.h"
#include "nodes/shared/Clock.h"
#include <deque>
#include <map>

namespace Trovio::Nodes {

/// Asks the clocks of those who publish, and answers those who subscribe. Time stamps stay as their source wrote them;
/// this tells how they read here.
/// Threads: one; getOffset() from any.
class DdsClocks {
public:
    struct Roles {
        bool _asks;
        bool _answers;
    };

    /// id: the number under which this node writes.
    DdsClocks(Clock& clock, std::uint64_t id, Roles roles) : _clock(clock), _id(id), _roles(roles) {}

    /// Throws DdsProblem.
    void open(const DdsEnds& ends);
    void close();

    /// Answers what was asked, and asks where it is time; when it will be again.
    std::optional<double> work();

    /// Of the clock of that writer, if it is known. now: our date.
    std::optional<ClockOffset::Estimate> getOffset(std::uint64_t writer, double now) const OSTREL_EXCLUDES(_lock);

private:
    static void onQuestion(dds_entity_t reader, void* clocks) noexcept;
    static void onAnswer(dds_entity_t reader, void* clocks) noexcept;
    void takeQuestion(const Trovio_Wire_ClockProbe& probe, double arrived) OSTREL_EXCLUDES(_lock);
    void takeAnswer(const Trovio_Wire_ClockProbe& probe, double arrived) OSTREL_EXCLUDES(_lock);
    std::optional<Trovio_Wire_ClockProbe> nextQuestion() OSTREL_EXCLUDES(_lock);

    Clock& _clock;
    const std::uint64_t _id;
    const Roles _roles;
    std::function<void()> _wake;
    double _nextAsking = 0.0;
    int _asked = 0;

    mutable Ostrel::Mutex _lock; // leaf
    std::deque<Trovio_Wire_ClockProbe> _questions OSTREL_GUARDED_BY(_lock);
    std::map<std::uint64_t, ClockOffset> _offsets OSTREL_GUARDED_BY(_lock); // by who answers

    DdsEntity _questionTopic, _answerTopic, _questionWriter, _answerWriter;
    DdsEntity _questionReader, _answerReader; // last: go first, and with them the listeners
};

} // namespace Trovio::Nodes
