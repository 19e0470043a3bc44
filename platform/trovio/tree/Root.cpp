#include "trovio/Root.h"

#include "osg/LogMessage.h"
#include "trovio/NodeType.h"

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

} // namespace Trovio
