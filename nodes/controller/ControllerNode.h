#pragma once

#include "nodes/controller/ControllerHub.h"
#include "nodes/controller/ControllerSlots.h"
#include "nodes/shared/MemoryShortage.h"
#include "trovio/InSlot.h"
#include "trovio/Node.h"

namespace Trovio::Nodes {

/// A game controller: its sticks, triggers, buttons and motion sensors as out-slots, its motors as in-slots.
/// The slots are the same for every device, and stay when it is unplugged; then everything comes to rest and the node
/// is degraded, until the device is there again.
/// Ownership: owns its slots; routes refer to them only while the node stands in a namespace.
/// Threads:   records are pushed on the hub's thread, which all controllers share.
class ControllerNode final : public Node, private ControllerUser, private SlotListener {
public:
    explicit ControllerNode(ControllerHub& hub);
    ~ControllerNode() override;

    static const NodeTypeEntry& getEntry();

private:
    void configure(const Settings& settings) override;
    void start() override;
    void stop() override;

    void dataArrived(Slot&) override { _hub.wake(); }

    const DeviceFilter& getFilter() const override { return _filter; }
    void deviceTaken(const DeviceIdentity& device, const ControllerState& state, const Time& now) override;
    void inputChanged(const InputChange& change, const Time& now) override { _slots.apply(change, now); }
    void pollEnded(const Time& now) override { _slots.flush(now); }
    void deviceMissing(const std::string& reason, const Time& now) override;
    std::optional<Rumble> takeRumble() override;
    void rumbleDone(bool accepted) override;
    void pollFailed() noexcept override { _shortage.note(); }

    ControllerHub& _hub;
    Counter& _rumbled;
    Counter& _rumbleRefused;

    // Unchanged while the node runs.
    DeviceFilter _filter;
    double _rumbleSeconds = 0.0;

    ControllerSlots _slots;
    MemoryShortage _shortage;
    InSlot<float> _rumble{"rumble"};
    InSlot<Vec2<float>> _motors{"rumble/motors"};
};

} // namespace Trovio::Nodes
