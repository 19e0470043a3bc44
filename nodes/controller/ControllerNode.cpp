#include "nodes/controller/ControllerNode.h"

#include "trovio/BasicOutSlot.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t filterRows = std::size(DeviceFilter::Rows);

std::array<Setting, filterRows + 1> makeTable()
{
    std::array<Setting, filterRows + 1> table{};
    std::copy_n(DeviceFilter::Rows, filterRows, table.begin());
    table.back() = Setting::number("hold", "1", 0.01, 60, "seconds that the motors turn after a record, at most");
    return table;
}

/// NaN counts as 0.
float toStrength(float level)
{
    return level > 0.0F ? std::min(level, 1.0F) : 0.0F;
}

} // namespace

const NodeTypeEntry& ControllerNode::getEntry()
{
    static const auto settings = makeTable();
    static constexpr auto create = []() -> std::unique_ptr<Node> {
        return std::make_unique<ControllerNode>(ControllerHub::system());
    };
    static const NodeTypeEntry entry{"Controller", "a game controller: sticks, triggers, buttons, motion and rumble",
                                     settings, create};
    return entry;
}

ControllerNode::ControllerNode(ControllerHub& hub)
    : _hub(hub),
      _rumbled(addCounter("rumbled")),
      _rumbleRefused(addCounter("rumble refused")),
      _slots(addCounter("records")),
      _shortage(hub.getClock(), addCounter("without memory"), "Controller")
{
    _slots.forEach([this](const std::string& label, BasicOutSlot& slot) { addOutSlot(label, &slot); });
    for (BasicInSlot* slot : {static_cast<BasicInSlot*>(&_rumble), static_cast<BasicInSlot*>(&_motors)}) {
        slot->setListener(this);
        addInSlot(slot->getName(), slot);
    }
}

ControllerNode::~ControllerNode() = default;

void ControllerNode::configure(const Settings& settings)
{
    _filter = DeviceFilter(settings);
    _rumbleSeconds = settings.number("hold");
}

void ControllerNode::start()
{
    _hub.attach(*this);
}

void ControllerNode::stop()
{
    _hub.detach(*this);
}

void ControllerNode::deviceTaken(const DeviceIdentity& device, const ControllerState& state, const Time& now)
{
    setRunning("uses " + device.describe()); // before the records that come of it
    _slots.show(state, now);
}

void ControllerNode::deviceMissing(const std::string& reason, const Time& now)
{
    setDegraded(reason);
    _slots.rest(now);
}

std::optional<Rumble> ControllerNode::takeRumble()
{
    std::optional<Rumble> rumble;
    if (!_rumble.empty()) {
        const float level = toStrength(_rumble.pop().getValue());
        rumble = {level, level, _rumbleSeconds};
    }
    if (!_motors.empty()) {
        const Vec2<float> levels = _motors.pop().getValue();
        rumble = {toStrength(levels[0]), toStrength(levels[1]), _rumbleSeconds};
    }
    return rumble;
}

void ControllerNode::rumbleDone(bool accepted)
{
    (accepted ? _rumbled : _rumbleRefused).add();
}

} // namespace Trovio::Nodes
