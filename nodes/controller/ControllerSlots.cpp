#include "nodes/controller/ControllerSlots.h"

#include <utility>

namespace Trovio::Nodes {

namespace {

constexpr const char* stickNames[] = {"stick/left", "stick/right"};
constexpr const char* triggerNames[] = {"trigger/left", "trigger/right"};
constexpr const char* motionNames[MotionCount] = {"gyro", "accelerometer"};
constexpr const char* buttonNames[ButtonCount] = {"button/a",
                                                  "button/b",
                                                  "button/x",
                                                  "button/y",
                                                  "button/back",
                                                  "button/guide",
                                                  "button/start",
                                                  "button/leftStick",
                                                  "button/rightStick",
                                                  "button/leftShoulder",
                                                  "button/rightShoulder",
                                                  "button/up",
                                                  "button/down",
                                                  "button/left",
                                                  "button/right",
                                                  "button/misc",
                                                  "button/paddle1",
                                                  "button/paddle2",
                                                  "button/paddle3",
                                                  "button/paddle4",
                                                  "button/touchpad"};

template <class Slots, std::size_t N>
void addSlots(Slots& slots, const char* const (&names)[N])
{
    for (const char* name : names)
        slots.emplace_back(name);
}

template <class Slots>
void setWrittenOnChange(Slots& slots)
{
    for (auto& slot : slots)
        slot.setWrittenOnChange();
}

} // namespace

ControllerSlots::ControllerSlots(Counter& records) : _records(records)
{
    addSlots(_sticks, stickNames);
    addSlots(_triggers, triggerNames);
    addSlots(_buttons, buttonNames);
    addSlots(_motions, motionNames);
    setWrittenOnChange(_sticks);
    setWrittenOnChange(_triggers);
    setWrittenOnChange(_buttons);
}

void ControllerSlots::forEach(const std::function<void(const std::string&, BasicOutSlot&)>& visit)
{
    const auto visitAll = [&visit](auto& slots) {
        for (auto& slot : slots)
            visit(slot.getName(), slot);
    };
    visitAll(_sticks);
    visitAll(_triggers);
    visitAll(_buttons);
    visitAll(_motions);
}

void ControllerSlots::show(const ControllerState& state, const Time& now)
{
    _state = state;
    _moved = {};
    send(nullptr, now);
}

void ControllerSlots::apply(const InputChange& change, const Time& now)
{
    ControllerState after = _state;
    after.apply(change);
    // Every reading of a motion sensor is an event; of any other control only a change is.
    if (after == _state && change._kind != InputKind::Motion)
        return;
    const bool ofStick = change._kind == InputKind::Axis && change._index < LeftTrigger;
    if (ofStick)
        expectMove(change._index, now);
    _state = after;
    if (change._kind == InputKind::Button)
        push(_buttons[change._index], change._values[0] != 0.0F, now);
    else if (change._kind == InputKind::Motion)
        push(_motions[change._index], change._values, now);
    else if (!ofStick)
        push(_triggers[change._index - LeftTrigger], change._values[0], now);
}

void ControllerSlots::expectMove(std::size_t axis, const Time& now)
{
    const std::size_t stick = axis / 2;
    const unsigned bit = 1U << (axis % 2);
    if ((_moved[stick] & bit) != 0)
        flushStick(stick, now);
    _moved[stick] |= bit;
}

void ControllerSlots::flush(const Time& now)
{
    for (std::size_t stick = 0; stick < stickCount; ++stick)
        if (_moved[stick] != 0)
            flushStick(stick, now);
}

void ControllerSlots::flushStick(std::size_t stick, const Time& now)
{
    _moved[stick] = 0;
    push(_sticks[stick], stickOf(_state, stick), now);
}

void ControllerSlots::rest(const Time& now)
{
    flush(now);
    const ControllerState before = std::exchange(_state, {});
    send(&before, now);
}

ControllerSlots::Vec2f ControllerSlots::stickOf(const ControllerState& state, std::size_t stick)
{
    return {state._axes[2 * stick], state._axes[2 * stick + 1]};
}

void ControllerSlots::send(const ControllerState* before, const Time& now)
{
    const auto sendOne = [&](auto& slot, const auto& read) {
        if (!before || read(*before) != read(_state))
            push(slot, read(_state), now);
    };
    for (std::size_t i = 0; i < _sticks.size(); ++i)
        sendOne(_sticks[i], [i](const ControllerState& state) { return stickOf(state, i); });
    for (std::size_t i = 0; i < _triggers.size(); ++i)
        sendOne(_triggers[i], [i](const ControllerState& state) { return state._axes[LeftTrigger + i]; });
    for (std::size_t i = 0; i < _buttons.size(); ++i)
        sendOne(_buttons[i], [i](const ControllerState& state) { return state._buttons[i]; });
    // Not every device has motion sensors; the slots of one that has none stay silent.
    for (std::size_t i = 0; i < _motions.size(); ++i)
        if (before || _state._motions[i])
            sendOne(_motions[i], [i](const ControllerState& state) { return state._motions[i].value_or(Vec3f()); });
}

template <class T>
void ControllerSlots::push(OutSlot<T>& slot, const T& value, const Time& now)
{
    slot.push(Data<T>(value, now));
    _records.add();
}

} // namespace Trovio::Nodes
