#include "monitor/server/streams/Channels.h"

#include "monitor/codec/Message.h"
#include "monitor/codec/Poses.h"
#include "trovio/Root.h"

namespace Monitor {

Channels::Slots Channels::look()
{
    Slots found;
    for (const Trovio::SlotInfo& slot : Trovio::Root::listSlots())
        if (!slot._label.empty() && slot._direction == Trovio::Slot::Direction::Out)
            if (const SlotCodec* const codec = SlotCodec::find(slot._typeName))
                found.emplace(slot._label, codec);
    return found;
}

std::string_view Channels::Channel::schemaName() const
{
    return _codec ? _codec->schemaName() : transformsMessage()._name;
}

const std::string& Channels::Channel::schemaText() const
{
    return _codec ? _codec->schemaText() : transformsMessage()._text;
}

bool Channels::update(Slots now)
{
    _poseLabels = Poses::labelsAmong(now);
    if (!_poseLabels.empty())
        now.emplace(PosesLabel, nullptr); // unless a slot is called so
    bool changed = false;
    for (auto entry = _channels.begin(); entry != _channels.end();) {
        const auto still = now.find(entry->second._label);
        if (still != now.end() && still->second == entry->second._codec) {
            now.erase(still);
            ++entry;
            continue;
        }
        entry = _channels.erase(entry);
        changed = true;
    }
    for (const auto& [label, codec] : now)
        _channels[++_last] = {label, codec};
    return changed || !now.empty();
}

const Channels::Channel* Channels::find(std::uint32_t number) const
{
    const auto found = _channels.find(number);
    return found == _channels.end() ? nullptr : &found->second;
}
} // namespace Monitor
