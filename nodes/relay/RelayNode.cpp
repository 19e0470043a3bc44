#include "nodes/relay/RelayNode.h"

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"

namespace Trovio::Nodes {

RelayTable::RelayTable(std::string types, const char* initialType, std::initializer_list<Setting> rows,
                       const char* meaning)
    : _types(std::move(types)),
      _rows{Setting::choice("type", initialType, _types.c_str(), meaning),
            Setting::integer("queue", "256", 1, 65536, "records that may wait in an in-slot; the newest are kept")}
{
    _rows.insert(_rows.end(), rows);
}

RelayNode::RelayNode(Clock& clock)
    : WorkerNode(clock),
      _received(addCounter("received")),
      _sent(addCounter("sent")),
      _shortage(clock, addCounter("without memory"), [this] { return getTypeName() + " '" + getLabel() + "'"; })
{
    declareRelay();
}

RelayNode::~RelayNode() = default;

unsigned RelayNode::readQueue(const Settings& settings)
{
    return static_cast<unsigned>(settings.integer("queue"));
}

void RelayNode::configure(const Settings& settings)
{
    auto lane = createLane(settings);
    removeSlots();
    _lane = std::move(lane);
    for (BasicInSlot* const slot : _lane->getInSlots()) {
        slot->setListener(this);
        addSlot(*slot);
    }
    for (BasicOutSlot* const slot : _lane->getOutSlots())
        addSlot(*slot);
}

std::vector<std::string> RelayNode::outLabels() const
{
    std::vector<std::string> labels;
    for (const BasicOutSlot* const slot : _lane->getOutSlots())
        labels.push_back(slot->getName());
    return labels;
}

void RelayNode::run()
{
    std::optional<double> until;
    const auto work = [&] {
        relayWaiting();
        until = update();
    };
    do {
        if (!_shortage.survives(work))
            until = _clock.now() + MemoryShortage::Pause;
    } while (_worker.wait(until));
}

void RelayNode::relayWaiting()
{
    while (!_worker.isStopping()) {
        const auto outcome = _lane->relayNext();
        if (!outcome)
            return;
        _received.add();
        if (*outcome == Outcome::Sent)
            _sent.add();
        else
            countUnsent(*outcome);
    }
}

} // namespace Trovio::Nodes
