#include "nodes/filters/FilterNode.h"

#include "trovio/messages/TimeText.h"

namespace Trovio::Nodes {

namespace {

// By Outcome, without Sent.
constexpr std::array causes{"with a value that is not finite (NaN, infinite, or a rotation without direction)",
                            "with a result beyond the limits of its type", "stamped no later than the one before"};

} // namespace

FilterNode::FilterNode(Clock& clock, CreateLane create)
    : RelayNode(clock),
      _createLane(create),
      _rejected{&addCounter("rejected value"), &addCounter("rejected result"), &addCounter("rejected time stamp")}
{
}

std::unique_ptr<Lane> FilterNode::createLane(const Settings& settings)
{
    return _createLane(settings, readQueue(settings));
}

void FilterNode::countRejected(Outcome outcome)
{
    _rejected.at(static_cast<std::size_t>(outcome) - 1)->add();
    const Time now = _clock.wallTime();
    const Ostrel::LockGuard guard(_runLock);
    if (_run._length == 0 || _run._after != countSent())
        _run = {countSent(), 0, now, now};
    ++_run._length;
    _run._last = now;
}

std::vector<RemarkInfo> FilterNode::getRemarks() const
{
    Run run;
    {
        const Ostrel::LockGuard guard(_runLock);
        run = _run;
    }
    if (run._length == 0)
        return {};
    std::string text;
    for (std::size_t i = 0; i < _rejected.size(); ++i)
        if (const std::uint64_t count = _rejected[i]->get(); count != 0)
            text += (text.empty() ? "rejected " : ", and ") + std::to_string(count) + " " + causes[i];
    const bool goesOn = run._after == countSent();
    text += goesOn ? "; everything since " + dateOf(run._first) : "; the last at " + dateOf(run._last);
    return {{"out", text}};
}

} // namespace Trovio::Nodes
