#include "nodes/osc/OscNode.h"

#include "nodes/osc/OscListenPlace.h"
#include "nodes/osc/address/OscEntryList.h"
#include "nodes/shared/Report.h"
#include "nodes/shared/SlotList.h"
#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include <set>

namespace Trovio::Nodes {

namespace {

constexpr const char* entryList = "'/address Type, /other i:3 Type:name Type:name, ...' with slot types, or nothing";

const Setting oscSettings[] = {
    Setting::endpoint("listen", "", "where to receive, ADDRESS:PORT; the address numeric, or localhost"),
    Setting::text("in", "", "what to receive; each address is an out-slot, or several", entryList),
    Setting::integer("buffer", "8388608", 4096, 1 << 30, "bytes that may wait in the receiving socket"),
    Setting::endpoint("send", "", "where to send, HOST:PORT"),
    Setting::text("out", "", "what to send; each address is an in-slot, or several", entryList),
    Setting::integer("queue", "256", 1, 65536, "records that may wait in each in-slot; the newest are kept"),
    Setting::choice("bundle", "auto", "auto|always|never",
                    "whether messages go in bundles, which carry times: where several wait, always, never"),
    Setting::choice("gather", "all", "all|frame",
                    "when a message of several slots goes: once each has a new value, or each frame"),
};

/// Both or neither of a half's two settings.
void checkPair(const Settings& settings, const char* place, const char* addresses)
{
    if (settings.text(place).empty() != settings.text(addresses).empty())
        throw settings.refusal(settings.text(place).empty() ? place : addresses,
                               std::string("a value, since '") + (settings.text(place).empty() ? addresses : place) +
                                   "' has one");
}

std::set<std::string> listLabels(const std::vector<OscEntry>& entries)
{
    std::set<std::string> labels;
    for (const OscEntry& entry : entries)
        for (const OscItem& item : entry._items)
            if (const auto* const slot = std::get_if<OscSlotItem>(&item))
                labels.insert(entry.getLabel(*slot));
    return labels;
}

OscInSettings readIn(const Settings& settings)
{
    OscInSettings in;
    in._entries = readOscEntries(settings, "in", OscDirection::In);
    in._bufferBytes = static_cast<int>(settings.integer("buffer"));
    in._listen = readOscListenPlace(settings.text("listen"));
    if (in._listen.empty())
        throw settings.refusal("listen", "a numeric address of this machine or localhost, and a port; 0.0.0.0 or [::] "
                                         "for all of its addresses");
    return in;
}

OscOutSettings readOut(const Settings& settings)
{
    OscOutSettings out;
    out._entries = readOscEntries(settings, "out", OscDirection::Out);
    out._target = *settings.endpoint("send");
    checkQueues(settings, "queue", listLabels(out._entries).size());
    out._queue = static_cast<unsigned>(settings.integer("queue"));
    out._bundling = static_cast<Bundling>(settings.choice("bundle"));
    out._gathering = static_cast<Gathering>(settings.choice("gather"));
    if (out._target._port == 0)
        throw settings.refusal("send", "a host and a port from 1 to 65535");
    return out;
}

void checkApart(const Settings& settings)
{
    const auto known = listLabels(readOscEntries(settings, "in", OscDirection::In));
    for (const std::string& label : listLabels(readOscEntries(settings, "out", OscDirection::Out)))
        if (known.count(label) != 0)
            throw settings.refusal("out", "addresses that 'in' does not have, but both have /" + label +
                                              "; use two nodes for that");
}

} // namespace

const NodeTypeEntry& OscNode::getEntry()
{
    static constexpr auto create = []() -> std::unique_ptr<Node> { return std::make_unique<OscNode>(Clock::system()); };
    static const NodeTypeEntry entry{"OSC", "Open Sound Control messages over UDP, received and sent", oscSettings,
                                     create};
    return entry;
}

OscNode::OscNode(Clock& clock, std::unique_ptr<NameLookup> lookup)
    : _clock(clock),
      _lookup(std::move(lookup)),
      _inCounters{addCounter("in packets"),
                  addCounter("in messages"),
                  addCounter("in values"),
                  addCounter("in mismatched"),
                  addCounter("in unknown"),
                  addCounter("in malformed"),
                  addCounter("in dropped by the kernel"),
                  addCounter("in left unread"),
                  addCounter("in without memory")},
      _outCounters{addCounter("out messages"), addCounter("out packets"),  addCounter("out failed"),
                   addCounter("out refused"),  addCounter("out replaced"), addCounter("out without memory")}
{
}

OscNode::~OscNode() = default;

void OscNode::configure(const Settings& settings)
{
    checkPair(settings, "listen", "in");
    checkPair(settings, "send", "out");
    if (settings.text("listen").empty() && settings.text("send").empty())
        throw settings.refusal("listen", "a value, unless 'send' has one");
    std::unique_ptr<OscInput> input;
    std::unique_ptr<OscOutput> output;
    checkApart(settings);
    if (settings.endpoint("listen"))
        input = std::make_unique<OscInput>(
            _clock, readIn(settings), _inCounters, [this](const std::vector<BasicOutSlot*>& slots) { addSlots(slots); },
            [this](const std::string& problem) { setProblem(&Problems::_input, problem); });
    if (settings.endpoint("send"))
        output = std::make_unique<OscOutput>(
            _clock, _lookup, readOut(settings), _outCounters,
            [this](const std::string& problem) { setProblem(&Problems::_output, problem); });

    removeSlots();
    _input = std::move(input);
    _output = std::move(output);
    if (_input)
        _input->forEachSlot([this](BasicOutSlot& slot) { addSlot(slot); });
    if (_output)
        _output->forEachSlot([this](BasicInSlot& slot) { addSlot(slot); });
}

void OscNode::start()
{
    {
        const Ostrel::LockGuard guard(_problemLock);
        _problems = {};
    }
    if (_input)
        _input->start();
    if (_output)
        _output->start();
}

void OscNode::stop()
{
    if (_input)
        _input->stop();
    if (_output)
        _output->stop();
}

std::vector<SocketAddress> OscNode::getListenAddresses() const
{
    return _input ? _input->getAddresses() : std::vector<SocketAddress>();
}

NodeState OscNode::getStateOf(const Slot& slot) const
{
    const Ostrel::LockGuard guard(_problemLock);
    const std::string& problem = slot.isInSlot() ? _problems._output : _problems._input;
    return problem.empty() ? NodeState() : NodeState{true, problem, getState()._since, {}};
}

std::vector<RemarkInfo> OscNode::getRemarks() const
{
    return _input ? _input->getRemarks() : std::vector<RemarkInfo>();
}

void OscNode::setProblem(std::string Problems::*half, const std::string& problem)
{
    bool recovers = false;
    Problems shown;
    {
        const Ostrel::LockGuard guard(_problemLock);
        recovers = problem.empty() && !(_problems.*half).empty();
        _problems.*half = problem;
        shown = _problems;
    }
    // The framework reports the recovery of the whole node.
    if (recovers && shown != Problems())
        report(osg::LogWarning, half == &Problems::_input ? "OSC: receives again" : "OSC: sends again");
    // Without the lock, for the log may be slow. The other half may change meanwhile: whoever shows last shows both.
    for (bool isCurrent = false; !isCurrent;) {
        showState(shown);
        const Ostrel::LockGuard guard(_problemLock);
        isCurrent = shown == _problems;
        shown = _problems;
    }
}

void OscNode::showState(const Problems& problems)
{
    const auto& [input, output] = problems;
    if (problems == Problems())
        setRunning();
    else
        setDegraded(input + (input.empty() || output.empty() ? "" : "; ") + output);
}

} // namespace Trovio::Nodes
