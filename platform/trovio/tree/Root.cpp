#include "trovio/Root.h"

#include "osg/LogMessage.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/explain/ScopeInspection.h"
#include "trovio/tree/ForEachBelow.h"
#include <algorithm>

namespace Trovio {

std::atomic<bool> Root::initialized_{false};
Namespace Root::the_;

void Root::init()
{
    initialized_.store(true, std::memory_order_release);
}

void Root::shutdown()
{
    if (!initialized_.load(std::memory_order_acquire))
        return;
    the_.clear();
    initialized_.store(false, std::memory_order_release);
    NodeType::shutdown();
    osg::logHeldBack(true);
}

std::vector<SlotInfo> Root::listSlots()
{
    constexpr std::size_t atOnce = 256;
    std::vector<SlotInfo> slots;
    {
        const Ostrel::LockGuard guard(Namespace::_treeLock);
        const Scope& top = *the_._scope;
        the_.forEachBelow({}, [&](const std::string& path, const Scope& scope) { addUnseen(scope, path, top, slots); });
    }
    const std::vector<std::string> labels = listLabels();
    slots.reserve(slots.size() + labels.size());
    for (std::size_t begin = 0; begin < labels.size(); begin += atOnce) {
        const Ostrel::LockGuard guard(Namespace::_treeLock);
        for (std::size_t i = begin; i < std::min(begin + atOnce, labels.size()); ++i)
            addSeen(*the_._scope, labels[i], slots);
    }
    return slots;
}

std::vector<std::string> Root::listLabels()
{
    const Ostrel::LockGuard guard(Namespace::_treeLock);
    std::vector<std::string> labels;
    for (const auto& [label, same] : the_._scope->getViews())
        if (!isForTools(label))
            labels.push_back(label);
    return labels;
}

std::map<std::string, NodeInfo> Root::listNodes()
{
    const Ostrel::LockGuard guard(Namespace::_treeLock);
    std::map<std::string, NodeInfo> nodes;
    the_.forEachBelow({}, [&nodes](const std::string& path, const Scope& scope) {
        if (const Node* const node = scope.getNode())
            nodes.emplace(path, inspectNode(*node, scope.isRelaying()));
    });
    return nodes;
}

} // namespace Trovio
