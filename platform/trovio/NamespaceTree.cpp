#include "trovio/Exception.h"
#include "trovio/FlowQuery.h"
#include "trovio/Namespace.h"
#include "trovio/Node.h"
#include "trovio/Pattern.h"
#include "trovio/Root.h"

// Children: how they come, how they go, and when their nodes run.
namespace Trovio {

using Ostrel::LockGuard;

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
    std::vector<Node*> nodes;
    Children::iterator position;
    {
        const LockGuard guard(_treeLock);
        position = link(wanted, std::move(child));
        if (standsUnderRoot())
            position->second->collectNodes(nodes);
    }
    try {
        startAll(nodes);
    } catch (...) {
        const auto refused = takeOut(position);
        throw;
    }
    const LockGuard guard(_treeLock);
    position->second->_presence = Presence::Standing;
    return position->first;
}

Namespace::Children::iterator Namespace::link(const std::string& wanted, std::unique_ptr<Namespace> child)
{
    const auto position = _children.try_emplace(freeLabel(wanted), std::move(child)).first;
    Namespace& linked = *position->second;
    linked._parent = this;
    linked._label = position->first;
    linked._presence = Presence::Joining;
    if (auto* node = dynamic_cast<Node*>(&linked))
        node->showLabel(linked._label);
    linked.setConnecting(true);
    linked._scope->attach(*_scope, linked._label);
    _dirty = true;
    return position;
}

std::unique_ptr<Namespace> Namespace::unlink(Children::iterator position)
{
    Namespace& linked = *position->second;
    linked._scope->detach();
    linked.setConnecting(false);
    linked._parent = nullptr;
    linked._label.clear();
    linked._presence = Presence::Free;
    _dirty = true;
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
void Namespace::stopAll(const std::vector<Node*>& nodes)
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
        position->second->_presence = Presence::Leaving;
        position->second->collectNodes(nodes);
    }
    stopAll(nodes);
    return takeOut(position);
}

std::unique_ptr<Namespace> Namespace::takeOut(Children::iterator position)
{
    const LockGuard guard(_treeLock);
    return unlink(position);
}

std::string Namespace::freeLabel(const std::string& wanted)
{
    if (!_children.contains(wanted))
        return wanted;
    unsigned long& number = _numbersTaken.try_emplace(wanted, 1UL).first->second;
    std::string label;
    do
        label = wanted + std::to_string(++number);
    while (_children.contains(label));
    return label;
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

void Namespace::setConnecting(bool connecting)
{
    _scope->setConnecting(connecting);
    for (const auto& [label, child] : _children)
        child->setConnecting(connecting);
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

template <class Visit>
void Namespace::forEachBelow(const std::string& path, const Visit& visit) const
{
    for (const auto& [label, child] : _children) {
        const std::string childPath = path.empty() ? label : path + "/" + label;
        visit(childPath, *child->_scope);
        child->forEachBelow(childPath, visit);
    }
}

Explanation Namespace::explain(const std::string& from, const std::string& to, double staleAfter) const
{
    const LockGuard guard(_treeLock);
    std::vector<FlowQuery::Below> below;
    forEachBelow({}, [&below](const std::string& path, const Scope& scope) { below.push_back({path, &scope}); });
    return FlowQuery(*_scope, std::move(below), staleAfter).explain(from, to);
}

NamespaceInfo Namespace::inspect() const
{
    const LockGuard guard(_treeLock);
    return inspectLocked();
}

NamespaceInfo Namespace::inspectLocked() const
{
    NamespaceInfo info;
    info._label = _label;
    info._dirty = _dirty;
    if (const auto* node = dynamic_cast<const Node*>(this))
        info._node = NodeInfo{node->getTypeName(), node->getState(), node->getCounters(), node->getRemarks(),
                              _scope->isRelaying()};
    _scope->inspect(info);
    for (const auto& [label, child] : _children)
        info._children.push_back(child->inspectLocked());
    return info;
}

} // namespace Trovio
