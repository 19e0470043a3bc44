#include "host/replay/Player.h"

#include "trovio/InSlot.h"
#include "trovio/SlotTypes.h"
#include "trovio/Values.h"

namespace Host {

namespace {

const Trovio::NodeTypeEntry playerType{"Player", "stands for a node in a replay"};
}

Player::Player(std::string standsFor) : _standsFor(std::move(standsFor))
{
    setType(playerType);
}

Monitor::AnySource& Player::addSource(const std::string& label, const Monitor::SlotCodec& codec)
{
    auto& source = _sources[label];
    if (!source) {
        source = codec.makeSource(label);
        addOutSlot(label, &source->slot());
    }
    return *source;
}

void Player::addSink(const std::string& label, const std::string& slotType)
{
    Trovio::withSlotType(slotType, [&]<class T>(Trovio::TypeTag<T>) {
        _sinks.push_back(std::make_unique<Trovio::InSlot<T>>(label));
        addInSlot(label, _sinks.back().get());
    });
}
} // namespace Host
