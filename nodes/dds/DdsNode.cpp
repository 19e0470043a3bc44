#include "nodes/dds/DdsNode.h"

#include "nodes/dds/DdsLog.h"
#include "nodes/dds/DdsSettings.h"
#include "trovio/BasicInSlot.h"

namespace Trovio::Nodes {

namespace {

constexpr double reopenPeriod = 2.0;  // seconds from a failed opening to the next
constexpr double lookupPeriod = 0.05; // seconds from one look for the answer of a name server to the next
constexpr double addressPeriod = 2.0; // seconds from one look at the own addresses to the next
constexpr double retryPeriod = 0.001; // seconds to the next try where a reader does not keep up
constexpr std::size_t mostNamed = 3;  // topics that a message names

std::string listOf(const std::vector<std::string>& names)
{
    std::string list;
    for (std::size_t i = 0; i < names.size() && i < mostNamed; ++i)
        list += (i > 0 ? ", " : "") + names[i];
    return names.size() > mostNamed ? list + " and " + std::to_string(names.size() - mostNamed) + " more" : list;
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
    : _clock(clock),
      _outCounters{addCounter("out samples"), addCounter("out delays"), addCounter("out failed")},
      _inCounters{addCounter("in samples"), addCounter("in missed"), addCounter("in repeated"),
                  addCounter("in refused")},
      _worker(clock)
{
}

DdsNode::~DdsNode() = default;

void DdsNode::configure(const Settings& settings)
{
    auto session = std::make_unique<DdsSession>(_clock, readDdsSettings(settings), _outCounters, _inCounters, [this] {
        _lookNeeded = true;
        _worker.wake();
    });
    removeSlots();
    _session = std::move(session);
    _session->forEachInSlot([this](const std::string& label, BasicInSlot& slot) {
        addInSlot(label, &slot);
        _labels.push_back(label);
    });
    _session->forEachOutSlot([this](const std::string& label, BasicOutSlot& slot) {
        addOutSlot(label, &slot);
        _labels.push_back(label);
    });
}

void DdsNode::removeSlots()
{
    for (const std::string& label : _labels)
        removeSlot(label);
    _labels.clear();
}

void DdsNode::start()
{
    DdsLog::takeOver();
    _worker.start(
        "dds", [this] { run(); }, [this](const std::string& problem) { setDegraded("ended: " + problem); });
}

void DdsNode::stop()
{
    _worker.stop();
    _session->close();
}

void DdsNode::run()
{
    std::optional<double> next;
    do {
        if (_session->isOpen())
            closeIfStale();
        if (!_session->isOpen())
            next = tryOpen();
        if (_session->isOpen())
            next = work();
    } while (_worker.wait(next));
}

double DdsNode::tryOpen()
{
    try {
        if (!_session->open())
            return _clock.now() + lookupPeriod;
    } catch (const DdsProblem& problem) {
        setDegraded(problem.what());
        return _clock.now() + reopenPeriod;
    }
    report(osg::LogAlways,
           "DDS: " + _session->getDomain().describe() + "; interface=NAME or host=ADDRESS chooses another");
    _graceEnd = _clock.now() + _session->getSettings()._domain._lease;
    _lookNeeded = true;
    _nextAddressLook = _clock.now() + addressPeriod;
    return 0.0;
}

void DdsNode::closeIfStale()
{
    if (_session->getSettings()._domain.isLoopback() || _clock.now() < _nextAddressLook)
        return;
    _nextAddressLook = _clock.now() + addressPeriod;
    if (_session->getDomain().isCurrent())
        return;
    setDegraded("the address of this machine in " + _session->getDomain().describe() +
                " has changed; it is opened again");
    _session->close();
}

std::optional<double> DdsNode::work()
{
    bool retry = false;
    if (_session->sendWaiting(retry))
        _worker.wake();
    const bool isGrace = _clock.now() < _graceEnd;
    if (_lookNeeded.exchange(false) || (!isGrace && _graceEnd > 0.0)) {
        _session->lookAround();
        reportHealth();
    }
    if (!isGrace)
        _graceEnd = 0.0;
    std::optional<double> next = _session->compareClocks();
    if (!_session->getSettings()._domain.isLoopback())
        next = std::min(next.value_or(_nextAddressLook), _nextAddressLook);
    for (const double time : {retry ? _clock.now() + retryPeriod : 0.0, _graceEnd})
        if (time > 0.0)
            next = std::min(next.value_or(time), time);
    return next;
}

void DdsNode::reportHealth()
{
    const auto unpublished = _session->getUnpublished();
    const std::string mismatch = _session->getMismatch();
    if (!mismatch.empty())
        setDegraded(mismatch);
    else if (!unpublished.empty() && _clock.now() >= _graceEnd)
        setDegraded("nobody publishes " + listOf(unpublished) + " in " + _session->getDomain().describe() +
                    "; interface=NAME or host=ADDRESS chooses another");
    else
        setRunning();
}

} // namespace Trovio::Nodes
