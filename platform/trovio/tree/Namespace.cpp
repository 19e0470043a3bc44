#include "trovio/Namespace.h"

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Exception.h"
#include "trovio/Node.h"
#include "trovio/NodeMove.h"
#include "trovio/Settings.h"
#include "trovio/messages/FrameworkLog.h"
#include "trovio/routing/Scope.h"
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
        if (dynamic_cast<const Node*>(last->second.get()))
            move.emplace(last->first, NodeMove::Kind::IsDestroyed);
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
    _dirty = true;
}

void Namespace::removeRoute(const std::string& from, const std::string& to)
{
    const LockGuard guard(_treeLock);
    if (_scope->removeRoute(from, to))
        _dirty = true;
    else
        logMessage(LogLevel::Warning,
                   "namespace '" + _label + "' has no route '" + from + "' -> '" + to + "' to remove");
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
        logMessage(LogLevel::Warning,
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

} // namespace Trovio
