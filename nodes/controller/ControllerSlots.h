#pragma once

#include "nodes/controller/ControllerInput.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"
#include <deque>
#include <functional>

namespace Trovio::Nodes {

/// The out-slots of a controller: what moves on it becomes records.
/// Threads: one at a time; the slots themselves are for any thread.
class ControllerSlots {
public:
    /// Counts the records that it pushes.
    explicit ControllerSlots(Counter& records);

    void forEach(const std::function<void(const std::string& label, BasicOutSlot& slot)>& visit);

    /// Sends the whole state: what was sent before may have come from another device.
    void show(const ControllerState& state, const Time& now);

    /// What changes nothing is left out, but for motion. A stick waits for its other axis, until the same one moves
    /// again or flush() is called, so that a diagonal comes out as one record.
    void apply(const InputChange& change, const Time& now);
    void flush(const Time& now);

    /// The device is gone: sends the rest position of every control that is not at rest.
    void rest(const Time& now);

private:
    using Vec2f = Vec2<float>;
    using Vec3f = Vec3<float>;
    static constexpr std::size_t stickCount = 2;

    static Vec2f stickOf(const ControllerState& state, std::size_t stick);
    void expectMove(std::size_t axis, const Time& now);
    void flushStick(std::size_t stick, const Time& now);
    /// Only what differs from before, if there is a before.
    void send(const ControllerState* before, const Time& now);
    template <class T>
    void push(OutSlot<T>& slot, const T& value, const Time& now);

    Counter& _records;
    ControllerState _state;
    std::array<unsigned, stickCount> _moved{}; // for each stick one bit for each axis that waits

    std::deque<OutSlot<Vec2f>> _sticks;
    std::deque<OutSlot<float>> _triggers;
    std::deque<OutSlot<bool>> _buttons;
    std::deque<OutSlot<Vec3f>> _motions;
};

} // namespace Trovio::Nodes
