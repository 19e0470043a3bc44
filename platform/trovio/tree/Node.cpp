#include "trovio/Node.h"

#include "trovio/NodeMove.h"
#include "trovio/Settling.h"
#include "trovio/messages/ExceptionText.h"
#include "trovio/messages/FrameworkLog.h"
#include "trovio/messages/TimeText.h"
#include "trovio/routing/Scope.h"
#include <new>

namespace Trovio {

using Ostrel::LockGuard;

namespace {

constexpr Setting common[] = {
    Setting::text("label", "", "the label under which the node stands; its type's name if empty"),
};

/// Calls what a node's type has written. What it throws that is no exception of the framework or of the standard
/// library becomes a refusal that says where it came from: nobody above could make anything of it.
template <class Refusal, class Call>
void callType(const std::string& type, const std::string& label, const char* operation, const Call& call)
{
    try {
        call();
    } catch (const Exception&) {
        throw;
    } catch (const std::exception&) {
        throw;
    } catch (...) {
        throw Refusal("node '" + (label.empty() ? type : label) + "' of type '" + type + "' threw in " + operation +
                      " " + describeCurrentException() + "; correct the module of this type");
    }
}

} // namespace

Node::Node()
{
    {
        const LockGuard guard(_treeLock);
        _scope->setNode(*this);
        _nodeCount = 1;
    }
    addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    setDirty(false);
}

Node::~Node() = default;
Settling::~Settling() = default;

std::span<const Setting> Node::commonSettings()
{
    return common;
}

void Node::configure(const Settings&) {}
void Node::start() {}
void Node::stop() {}

void Node::setType(const NodeTypeEntry& type)
{
    const LockGuard guard(_stateLock);
    _type = type;
}

std::string Node::getTypeName() const
{
    const LockGuard guard(_stateLock);
    return _type._name;
}

void Node::setFieldValues(const std::string& text)
{
    if (const std::string label = getLabel(); !label.empty())
        throw InvalidFieldException("node '" + label + "' already stands in the tree; take it out before you change " +
                                    "its settings");
    std::vector<Setting> table(std::begin(common), std::end(common));
    {
        const LockGuard guard(_stateLock);
        table.insert(table.end(), _type._settings.begin(), _type._settings.end());
    }
    const Settings settings(table, text, getBaseURL());
    std::string label = settings.text("label");
    if (isForTools(label))
        throw settings.refusal("label", "a text that does not begin with '@', for such labels belong to tools");
    {
        const NodeMove move(label.empty() ? getTypeName() : label, NodeMove::Kind::IsConfigured);
        callType<InvalidFieldException>(getTypeName(), label, "configure()", [&] { configure(settings); });
    }
    setDirty(true);
    const LockGuard guard(_stateLock);
    _wantedLabel.swap(label);
    _configured = true;
}

bool Node::isConfigured() const
{
    const LockGuard guard(_stateLock);
    return _configured;
}

std::string Node::getWantedLabel() const
{
    const LockGuard guard(_stateLock);
    return _wantedLabel.empty() ? _type._name : _wantedLabel;
}

void Node::showLabel(std::string label)
{
    const LockGuard guard(_stateLock);
    _shownLabel.swap(label);
}

void Node::enter()
{
    const LockGuard guard(_lifeLock);
    {
        const LockGuard tree(_treeLock);
        if (!standsUnderRoot())
            return;
    }
    {
        const LockGuard state(_stateLock);
        _state = {false, {}, Time::getCurrentTime(), {}};
    }
    const NodeMove move(getPath(), NodeMove::Kind::Starts);
    callType<InvalidNodeException>(getTypeName(), getLabel(), "start()", [this] { start(); });
    _started = true;
}

std::string Node::getPath() const noexcept
try {
    const LockGuard tree(_treeLock);
    std::string path = _label;
    for (const Namespace* level = _parent; level && !level->_label.empty(); level = level->_parent)
        path = level->_label + "/" + path;
    return path;
} catch (const std::bad_alloc&) {
    return {};
}

void Node::leave() noexcept
{
    const LockGuard guard(_lifeLock);
    if (!_started)
        return;
    _started = false;
    const NodeMove move(getPath(), NodeMove::Kind::Stops);
    try {
        stop();
    } catch (...) {
        sayThatStopThrew();
    }
}

void Node::sayThatStopThrew() const noexcept
{
    try {
        logMessage(osg::LogFatal, "node '" + getLabel() + "' of type '" + getTypeName() +
                                      "' threw while it stopped: " + describeCurrentException());
    } catch (const std::bad_alloc&) {
        logMessage(osg::LogFatal, "stop() threw"); // short enough to need no memory
    }
}

std::vector<RemarkInfo> Node::askRemarks() const
{
    try {
        return getRemarks();
    } catch (...) {
        return {{{}, "threw in getRemarks(): " + describeCurrentException()}};
    }
}

NodeState Node::askState(const Slot& slot) const
{
    try {
        return getStateOf(slot);
    } catch (...) {
        return {true, "threw in getStateOf(): " + describeCurrentException(), {}, {}};
    }
}

void Node::setRunning()
{
    changeState(false, {});
}

void Node::setRunning(const std::string& with)
{
    changeState(false, with);
}

void Node::setDegraded(const std::string& reason)
{
    changeState(true, reason);
}

void Node::changeState(bool degraded, const std::string& reason)
{
    // What needs memory comes first: a state that is changed has to be said.
    std::string line;
    osg::LogLevel level = osg::LogWarning; // also for the end of a trouble, so that who has seen the one sees the other
    {
        const LockGuard guard(_stateLock);
        if (_state._degraded == degraded && _state._reason == reason)
            return;
        const bool wasDegraded = _state._degraded;
        const Time since = wasDegraded == degraded ? _state._since : Time::getCurrentTime();
        const std::string overcome = degraded ? std::string() : wasDegraded ? _state._reason : _state._overcome;
        NodeState next{degraded, reason, since, overcome};
        line = "node '" + (_shownLabel.empty() ? std::string(_type._name) : _shownLabel) + "' ";
        if (degraded)
            line += "is degraded: " + reason;
        else if (wasDegraded)
            line += "runs again" + (reason.empty() ? "" : ", " + reason);
        else
            level = osg::LogAlways, line = reason.empty() ? "" : line + reason;
        std::swap(_state, next);
    }
    if (!line.empty())
        logMessage(level, line);
}

std::string NodeState::describe(const Time& now) const
{
    std::string text = _degraded ? "degraded" : "running";
    if (!_reason.empty())
        text += ", " + _reason;
    if (_overcome.empty())
        return text;
    return text + "; runs again for " + inSeconds(now.getSeconds() - _since.getSeconds()) +
           ", was degraded: " + _overcome;
}

NodeState Node::getState() const
{
    const LockGuard guard(_stateLock);
    return _state;
}

void Node::declareRelay()
{
    const LockGuard guard(_treeLock);
    _scope->setRelaying();
}

Counter& Node::addCounter(const std::string& name)
{
    return _counters.emplace_back(name);
}

NodeState Node::getStateOf(const Slot&) const
{
    return getState();
}

std::vector<CounterInfo> Node::getCounters() const
{
    std::vector<CounterInfo> counters;
    for (const Counter& counter : _counters)
        counters.push_back({counter.getName(), counter.get()});
    return counters;
}

std::vector<RemarkInfo> Node::getRemarks() const
{
    return {};
}

} // namespace Trovio
