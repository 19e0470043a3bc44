#include "nodes/relay/RelayNode.h"

namespace Trovio::Nodes {

RelayTable::RelayTable(std::string types, const char* initialType, std::initializer_list<Setting> rows)
    : _types(std::move(types)),
      _rows{Setting::choice("type", initialType, _types.c_str(), "slot type of both ends"),
            Setting::integer("queue", "256", 1, 65536, "records that may wait in the in-slot; the newest are kept")}
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
    _lane->getInSlot().setListener(this);
    addSlot(_lane->getInSlot());
    addSlot(_lane->getOutSlot());
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
            countRejected(*outcome);
    }
}

} // namespace Trovio::Nodes
