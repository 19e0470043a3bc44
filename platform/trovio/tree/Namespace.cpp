#include "trovio/Namespace.h"

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Exception.h"
#include "trovio/Node.h"
#include "trovio/NodeMove.h"
#include "trovio/Root.h"
#include "trovio/Settings.h"
#include "trovio/explain/FlowQuery.h"
#include "trovio/explain/ScopeInspection.h"
#include "trovio/messages/FrameworkLog.h"
#include "trovio/tree/ForEachBelow.h"
#include <algorithm>
#include <optional>

namespace Trovio {

using Ostrel::LockGuard;

Ostrel::Mutex Namespace::_treeLock(Ostrel::LockRank::Tree);

Namespace::Namespace() : _scope(std::make_unique<Scope>()) {}

Namespace::~Namespace()
{
    Children children;
    {
        const LockGuard guard(_treeLock);
        _scope->leaveTree();
        children.swap(_children);
    }
    // One after the other, so that a node whose destructor does not come back can be named.
    while (!children.empty()) {
        const auto last = std::prev(children.end());
        std::optional<NodeMove> move;
        if (auto* const node = dynamic_cast<Node*>(last->second.get())) {
            node->leave(); // in a program that ends without Root::shutdown(), its thread still uses its members
            move.emplace(last->first, NodeMove::Kind::IsDestroyed);
        }
        children.erase(last);
    }
}

void Namespace::setBaseURL(const Merid::URL& url)
{
    const LockGuard guard(_treeLock);
    _baseURL = url;
}

Merid::URL Namespace::getBaseURL() const
{
    const LockGuard guard(_treeLock);
    return _baseURL;
}

void Namespace::setDirty(bool dirty)
{
    const LockGuard guard(_treeLock);
    _dirty = dirty;
}

bool Namespace::isDirty() const
{
    const LockGuard guard(_treeLock);
    return _dirty;
}

std::string Namespace::getLabel() const
{
    const LockGuard guard(_treeLock);
    return _label;
}

void Namespace::setFieldValues(const std::string& settings)
{
    const Settings checked({}, settings);
}

void Namespace::addRoute(const std::string& from, const std::string& to)
{
    const LockGuard guard(_treeLock);
    _scope->addRoute(from, to);
    setChanged(isForTools(from) ? from : to);
}

void Namespace::removeRoute(const std::string& from, const std::string& to)
{
    const LockGuard guard(_treeLock);
    if (_scope->removeRoute(from, to))
        setChanged(isForTools(from) ? from : to);
    else
        logMessage(osg::LogWarning, "namespace '" + _label + "' has no route '" + from + "' -> '" + to + "' to remove");
}

void Namespace::addExternalRoute(const std::string& pattern, const std::string& target)
{
    const LockGuard guard(_treeLock);
    _scope->addExternalRoute(pattern, target);
    _dirty = true;
}

void Namespace::removeExternalRoute(const std::string& pattern, const std::string& target)
{
    const LockGuard guard(_treeLock);
    if (_scope->removeExternalRoute(pattern, target))
        _dirty = true;
    else
        logMessage(osg::LogWarning,
                   "namespace '" + _label + "' has no external route '" + pattern + "' -> '" + target + "' to remove");
}

void Namespace::addInSlot(const std::string& label, BasicInSlot* slot)
{
    if (!slot)
        throw Exception("no in-slot given for label '" + label + "'");
    const LockGuard guard(_treeLock);
    _scope->addSlot(label, *slot);
}

void Namespace::addOutSlot(const std::string& label, BasicOutSlot* slot)
{
    if (!slot)
        throw Exception("no out-slot given for label '" + label + "'");
    const LockGuard guard(_treeLock);
    _scope->addSlot(label, *slot);
}

void Namespace::removeSlot(const std::string& label)
{
    const LockGuard guard(_treeLock);
    _scope->removeSlot(label);
}

// Children: how they come, how they go, and when their nodes run.

std::string Namespace::addNamespace(const std::string& label, std::unique_ptr<Namespace> child)
{
    if (!child)
        throw InvalidNamespaceException("no namespace given for label '" + label + "'");
    return adopt(label, std::move(child));
}

std::string Namespace::addNamespace(std::unique_ptr<Node> node)
{
    if (!node)
        throw InvalidNodeException("no node given");
    if (!node->isConfigured())
        node->setFieldValues({});
    const std::string label = node->getWantedLabel();
    return adopt(label, std::move(node));
}

std::string Namespace::adopt(const std::string& wanted, std::unique_ptr<Namespace> child)
{
    if (wanted.empty() || wanted.size() > MaxLabelLength)
        throw InvalidNamespaceException("a namespace label has " + std::to_string(wanted.size()) +
                                        " bytes; allowed are 1 to " + std::to_string(MaxLabelLength));
    std::string label;
    std::vector<Node*> nodes;
    Children::iterator position;
    {
        const LockGuard guard(_treeLock);
        label = freeLabel(wanted);
        if (standsUnderRoot())
            child->collectNodes(nodes);
        position = link(label, child);
    }
    try {
        startAll(nodes);
    } catch (...) {
        const auto refused = takeOut(position);
        throw;
    }
    const LockGuard guard(_treeLock);
    position->second->_presence = Presence::Standing;
    return label;
}

/// Takes the child only where nothing failed: one that is left is destroyed by whoever does not hold the tree lock.
Namespace::Children::iterator Namespace::link(const std::string& label, std::unique_ptr<Namespace>& child)
{
    makeRoomToStop(*child);
    std::string own = label, shown = label;
    const auto position = _children.try_emplace(label, std::move(child)).first;
    Namespace& linked = *position->second;
    linked._parent = this;
    linked._label.swap(own);
    linked._presence = Presence::Joining;
    for (Namespace* level = this; level; level = level->_parent)
        level->_nodeCount += linked._nodeCount;
    if (auto* node = dynamic_cast<Node*>(&linked))
        node->showLabel(std::move(shown));
    try {
        linked.startConnecting();
        linked._scope->attach(*_scope, linked._label);
    } catch (...) {
        child = unlink(position);
        throw;
    }
    setChanged(label);
    return position;
}

/// For the child and all that it will be below: taking one out must not need memory.
void Namespace::makeRoomToStop(Namespace& child)
{
    const auto reserve = [](Namespace& level, std::size_t count) OSTREL_REQUIRES(_treeLock) {
        if (level._toStop.capacity() < count)
            level._toStop.reserve(std::max(count, 2 * level._toStop.capacity()));
    };
    reserve(child, child._nodeCount);
    for (Namespace* level = this; level; level = level->_parent)
        reserve(*level, level->_nodeCount + child._nodeCount);
}

std::unique_ptr<Namespace> Namespace::unlink(Children::iterator position) noexcept
{
    Namespace& linked = *position->second;
    linked._scope->detach();
    linked.stopConnecting();
    for (Namespace* level = this; level; level = level->_parent)
        level->_nodeCount -= linked._nodeCount;
    linked._parent = nullptr;
    linked._label.clear();
    linked._presence = Presence::Free;
    std::unique_ptr<Namespace> child = std::move(position->second);
    _children.erase(position);
    _numbersTaken.clear(); // the label may be a number of several
    return child;
}

void Namespace::startAll(const std::vector<Node*>& nodes)
{
    try {
        for (Node* node : nodes)
            node->enter();
    } catch (...) {
        stopAll(nodes);
        throw;
    }
}

/// In the opposite order of their start; those that did not start are left alone.
void Namespace::stopAll(const std::vector<Node*>& nodes) noexcept
{
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node)
        (*node)->leave();
}

Namespace* Namespace::getNamespace(const std::string& label) const
{
    const LockGuard guard(_treeLock);
    const auto found = _children.find(label);
    return found != _children.end() && found->second->_presence == Presence::Standing ? found->second.get() : nullptr;
}

std::unique_ptr<Namespace> Namespace::removeNamespace(const std::string& label)
{
    std::vector<Node*> nodes;
    Children::iterator position;
    {
        const LockGuard guard(_treeLock);
        position = _children.find(label);
        if (position == _children.end() || position->second->_presence != Presence::Standing || isInMotion())
            throw InvalidNamespaceException("no namespace '" + label + "' stands " +
                                            (_label.empty() ? "here" : "in '" + _label + "'"));
        Namespace& leaving = *position->second;
        leaving._presence = Presence::Leaving;
        leaving.collectNodes(leaving._toStop); // there is room
        nodes.swap(leaving._toStop);
    }
    stopAll(nodes);
    return takeOut(position);
}

std::unique_ptr<Namespace> Namespace::takeOut(Children::iterator position) noexcept
{
    const LockGuard guard(_treeLock);
    setChanged(position->first);
    return unlink(position);
}

std::string Namespace::freeLabel(const std::string& wanted)
{
    if (!_children.contains(wanted))
        return wanted;
    unsigned long& taken = _numbersTaken.try_emplace(wanted, 1UL).first->second;
    for (unsigned long number = taken + 1;; ++number) {
        std::string label = wanted + std::to_string(number);
        if (!_children.contains(label))
            return label;
        taken = number;
    }
}

bool Namespace::isInMotion() const
{
    for (const Namespace* level = this; level; level = level->_parent) {
        if (level->_presence == Presence::Joining || level->_presence == Presence::Leaving)
            return true;
    }
    return false;
}

bool Namespace::standsUnderRoot() const
{
    const Namespace* level = this;
    for (; level->_parent; level = level->_parent) {
        if (level->_presence == Presence::Leaving)
            return false;
    }
    return level == &Root::the_;
}

void Namespace::startConnecting()
{
    _scope->startConnecting();
    for (const auto& [label, child] : _children)
        child->startConnecting();
}

void Namespace::stopConnecting() noexcept
{
    _scope->stopConnecting();
    for (const auto& [label, child] : _children)
        child->stopConnecting();
}

void Namespace::collectNodes(std::vector<Node*>& nodes)
{
    if (auto* node = dynamic_cast<Node*>(this))
        nodes.push_back(node);
    for (const auto& [label, child] : _children)
        child->collectNodes(nodes);
}

void Namespace::clear()
{
    for (;;) {
        std::string label;
        {
            const LockGuard guard(_treeLock);
            if (_children.empty())
                break;
            label = _children.rbegin()->first;
        }
        removeNamespace(label);
    }
    const LockGuard guard(_treeLock);
    _scope->clear();
    _baseURL = Merid::URL();
    _dirty = false;
}

Explanation Namespace::explain(const std::string& from, const std::string& to, double staleAfter) const
{
    const LockGuard guard(_treeLock);
    std::vector<VisibleSlots::Below> below;
    forEachBelow({}, [&below](const std::string& path, const Scope& scope) { below.push_back({path, &scope}); });
    return FlowQuery(*_scope, std::move(below), staleAfter).explain(from, to);
}

NamespaceInfo Namespace::inspect() const
{
    const LockGuard guard(_treeLock);
    return inspectLocked();
}

std::vector<SlotInfo> Namespace::findSlots(const std::string& label) const
{
    const LockGuard guard(_treeLock);
    return inspectSlots(*_scope, label);
}

NamespaceInfo Namespace::inspectLocked() const
{
    NamespaceInfo info;
    info._label = _label;
    info._dirty = _dirty;
    if (const auto* node = dynamic_cast<const Node*>(this)) {
        info._node = inspectNode(*node, _scope->isRelaying());
        info._node->_remarks = node->askRemarks();
    }
    inspectScope(*_scope, info);
    for (const auto& [label, child] : _children)
        if (!isForTools(label))
            info._children.push_back(child->inspectLocked());
    return info;
}

} // namespace Trovio
