#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

FilterNode::FilterNode(Clock& clock, CreateLane create)
    : RelayNode(clock),
      _createLane(create),
      _rejected{&addCounter("rejected value"), &addCounter("rejected result"), &addCounter("rejected time stamp")}
{
}

std::unique_ptr<Lane> FilterNode::createLane(const Settings& settings)
{
    return _createLane(settings, readQueue(settings));
}

void FilterNode::countRejected(Outcome outcome)
{
    _rejected.at(static_cast<std::size_t>(outcome) - 1)->add();
}

} // namespace Trovio::Nodes
