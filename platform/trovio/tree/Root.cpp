#include "trovio/Root.h"

#include "osg/LogMessage.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/explain/ScopeInspection.h"
#include "trovio/tree/ForEachBelow.h"

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
    const Ostrel::LockGuard guard(Namespace::_treeLock);
    const Scope& top = *the_._scope;
    std::vector<SlotInfo> slots = inspectSeen(top);
    the_.forEachBelow({}, [&](const std::string& path, const Scope& scope) { addUnseen(scope, path, top, slots); });
    return slots;
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
