#include "nodes/dds/DdsNode.h"

#include "nodes/dds/DdsSettings.h"
#include "nodes/dds/net/DdsLog.h"
#include "trovio/BasicInSlot.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr double reopenPeriod = 2.0;  // seconds from a failed opening to the next
constexpr double lookupPeriod = 0.05; // seconds from one question whether the name server has answered to the next
constexpr double addressPeriod = 2.0; // seconds from one check of the own addresses to the next

constexpr std::string_view timingSuffix = "/timing";

/// The topic whose problems are also those of the slot. "Wand/alive" has none, as it reports them.
std::string topicOf(const std::string& label)
{
    return label.ends_with(timingSuffix) ? label.substr(0, label.size() - timingSuffix.size()) : label;
}

} // namespace

const NodeTypeEntry& DdsNode::getEntry()
{
    static constexpr auto create = []() -> std::unique_ptr<Node> { return std::make_unique<DdsNode>(Clock::system()); };
    static const NodeTypeEntry entry{"DDS", "topics shared with other programs and machines, published and subscribed",
                                     ddsSettingRows(), create};
    return entry;
}

DdsNode::DdsNode(Clock& clock)
    : WorkerNode(clock),
      _outCounters{addCounter("out samples"), addCounter("out failed")},
      _inCounters{addCounter("in samples"), addCounter("in missed"), addCounter("in repeated"),
                  addCounter("in refused"), addCounter("in without memory")},
      _shortage(clock, addCounter("without memory"), "DDS")
{
}

DdsNode::~DdsNode() = default;

void DdsNode::configure(const Settings& settings)
{
    const auto wake = [this] { _worker.wake(); };
    const auto peersChanged = [this] {
        _updateNeeded = true;
        _worker.wake();
    };
    auto session =
        std::make_unique<DdsSession>(_clock, readDdsSettings(settings), _outCounters, _inCounters, wake, peersChanged);
    removeSlots();
    _session = std::move(session);
    _session->forEachInSlot([this](BasicInSlot& slot) { addSlot(slot); });
    _session->forEachOutSlot([this](BasicOutSlot& slot) { addSlot(slot); });
}

void DdsNode::start()
{
    DdsLog::takeOver();
    keepRemarks(std::nullopt);
    WorkerNode::start();
}

void DdsNode::stop()
{
    WorkerNode::stop();
    try {
        keepRemarks(getRemarks()); // closing takes time, in which nothing becomes older
    } catch (const std::bad_alloc&) {
        // Closing matters more.
    }
    _session->close();
}

void DdsNode::keepRemarks(std::optional<std::vector<RemarkInfo>> remarks)
{
    const Ostrel::LockGuard guard(_remarksLock);
    _lastRemarks = std::move(remarks);
}

std::vector<RemarkInfo> DdsNode::getRemarks() const
{
    {
        const Ostrel::LockGuard guard(_remarksLock);
        if (_lastRemarks)
            return *_lastRemarks;
    }
    if (!_session)
        return {};
    std::vector<RemarkInfo> remarks = _session->getRemarks();
    const Ostrel::LockGuard guard(_problemsLock);
    for (const RemarkInfo& note : _topicProblems.getNotes())
        if (std::ranges::none_of(remarks, [&](const RemarkInfo& known) { return known._slot == note._slot; }))
            remarks.push_back(note);
    return remarks;
}

double DdsNode::getSettlingTime() const noexcept
{
    return _session ? _session->getSettings()._domain._lease : 0;
}

void DdsNode::run()
{
    std::optional<double> next;
    const auto goOn = [&] {
        if (_session->isOpen())
            closeIfStale();
        if (!_session->isOpen())
            next = tryOpen();
        if (_session->isOpen())
            next = work();
    };
    do {
        if (!_shortage.survives(goOn)) {
            _updateNeeded = true; // it may have been cut short
            next = _clock.now() + MemoryShortage::Pause;
        }
    } while (_worker.wait(next));
}

double DdsNode::tryOpen()
{
    try {
        if (!_session->open())
            return _clock.now() + lookupPeriod;
    } catch (const DdsProblem& problem) {
        setAllDegraded(problem.what());
        return _clock.now() + reopenPeriod;
    }
    _graceEnd = _clock.now() + _session->getSettings()._domain._lease;
    _updateNeeded = true;
    _nextAddressCheck = _clock.now() + addressPeriod;
    return 0.0;
}

void DdsNode::closeIfStale()
{
    if (_session->getSettings()._domain.isLoopback() || _clock.now() < _nextAddressCheck)
        return;
    _nextAddressCheck = _clock.now() + addressPeriod;
    if (_session->getDomain().isCurrent())
        return;
    setAllDegraded("the address of this machine in " + _session->getDomain().describe() +
                   " has changed; it is opened again");
    _session->close();
}

std::optional<double> DdsNode::work()
{
    if (_session->sendWaiting())
        _worker.wake();
    const bool isEarly = _clock.now() < _graceEnd;
    if (_updateNeeded.exchange(false) || (!isEarly && _graceEnd > 0.0)) {
        _session->update();
        setTopicProblems(_session->getTopicProblems(isEarly));
    }
    if (!isEarly)
        _graceEnd = 0.0;
    const bool hasAddress = !_session->getSettings()._domain.isLoopback();
    std::optional<double> next;
    for (const auto time : {_session->takeNewWriters(), _session->assertLiveliness(), _session->compareClocks(),
                            hasAddress ? std::optional(_nextAddressCheck) : std::nullopt,
                            isEarly ? std::optional(_graceEnd) : std::nullopt})
        if (time)
            next = std::min(next.value_or(*time), *time);
    return next;
}

void DdsNode::setAllDegraded(const std::string& reason)
{
    {
        const Ostrel::LockGuard guard(_problemsLock);
        _topicProblems = {};
    }
    setDegraded(reason);
}

void DdsNode::setTopicProblems(const DdsTopicProblems& problems)
{
    {
        const Ostrel::LockGuard guard(_problemsLock);
        _topicProblems = problems;
    }
    if (problems.empty())
        setRunning("takes part in " + _session->getDomain().describe() +
                   "; interface=NAME or host=ADDRESS chooses another");
    else
        setDegraded(problems.summary());
}

NodeState DdsNode::getStateOf(const Slot& slot) const
{
    const NodeState state = getState();
    const Ostrel::LockGuard guard(_problemsLock);
    if (_topicProblems.empty())
        return state; // all of it, or nothing
    const std::string problem = _topicProblems.find(topicOf(slot.getName()));
    return problem.empty() ? NodeState() : NodeState{true, problem, state._since, {}};
}

} // namespace Trovio::Nodes
