#pragma once

#include "trovio/BufferedInSlot.h"
#include <atomic>
#include <functional>
#include <optional>

namespace Trovio::Nodes {

/// An in-slot whose records a node sends on, oldest first.
/// Threads: any thread pushes into the slot; one at a time takes.
template <class T>
class SendQueue final : SlotListener {
public:
    /// arrived is called on the pushing thread after each record, under locks: it may only wake somebody.
    SendQueue(const std::string& name, unsigned capacity, std::function<void()> arrived)
        : _arrived(std::move(arrived)), _slot(name, capacity)
    {
        _slot.setListener(this);
    }

    BasicInSlot& getSlot() { return _slot; }

    /// The oldest waiting record. Nothing if none waits.
    std::optional<Data<T>> take()
    {
        if (!_isWaiting.load())
            return std::nullopt;
        _isWaiting = false; // before the slot is looked at: a record that comes now sets it again
        if (_slot.empty())
            return std::nullopt;
        _isWaiting = true;
        return _slot.pop();
    }

    /// Whether a record waits.
    bool isWaiting() { return _isWaiting.load() && !_slot.empty(); }

private:
    void dataArrived(Slot&) override
    {
        _isWaiting = true;
        _arrived();
    }

    const std::function<void()> _arrived;
    std::atomic<bool> _isWaiting{false}; // spares the lock of the many slots that have nothing
    BufferedInSlot<T> _slot;
};

} // namespace Trovio::Nodes
