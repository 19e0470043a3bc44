#include "nodes/shared/WorkerNode.h"

namespace Trovio::Nodes {

void WorkerNode::start()
{
    _worker.start(
        getTypeName().c_str(), [this] { run(); },
        [this](const std::string& problem) { workEnded("ended: " + problem); });
}

} // namespace Trovio::Nodes
