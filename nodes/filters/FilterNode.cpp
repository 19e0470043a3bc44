#include "nodes/filters/FilterNode.h"

#include "trovio/messages/TimeText.h"

namespace Trovio::Nodes {

FilterNode::FilterNode(Clock& clock, CreateLane create, const RejectionCauses& causes, const char* keptName)
    : RelayNode(clock),
      _createLane(std::move(create)),
      _causes(causes),
      _rejected{&addCounter("rejected value"), &addCounter("rejected result"), &addCounter("rejected time stamp")},
      _kept(keptName ? &addCounter(keptName) : nullptr)
{
}

std::unique_ptr<Lane> FilterNode::createLane(const Settings& settings)
{
    return _createLane(settings, readQueue(settings));
}

void FilterNode::countUnsent(Outcome outcome)
{
    if (outcome == Outcome::Kept)
        return _kept->add();
    _rejected.at(static_cast<std::size_t>(outcome) - 1)->add();
    const Time now = _clock.wallTime();
    const Ostrel::LockGuard guard(_runLock);
    if (_run._length == 0 || _run._after != countPassed())
        _run = {countPassed(), 0, now, now};
    ++_run._length;
    _run._last = now;
}

std::uint64_t FilterNode::countPassed() const
{
    return countSent() + (_kept ? _kept->get() : 0);
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
            text += (text.empty() ? "rejected " : ", and ") + std::to_string(count) + " " + _causes[i];
    const bool goesOn = run._after == countPassed();
    text += goesOn ? "; everything since " + dateOf(run._first) : "; the last at " + dateOf(run._last);
    std::vector<RemarkInfo> remarks;
    for (const std::string& label : outLabels())
        remarks.push_back({label, text});
    return remarks;
}

void refuseIfGiven(const Settings& settings, const char* name, const char* what)
{
    if (settings.isGiven(name))
        throw settings.refusal(name, std::string("only with a type that it means something for: ") + what);
}

} // namespace Trovio::Nodes
