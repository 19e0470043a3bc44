#pragma once

#include "nodes/controller/ControllerInput.h"
#include "nodes/controller/DeviceIdentity.h"
#include <vector>

namespace Trovio::Nodes {

/// A controller that was plugged in. Its number is never used again, not for the same device either.
struct Arrival {
    int _device;
    DeviceIdentity _identity;
};

/// What happened since the last poll. Changes are in order, and of devices that have arrived and not yet left.
struct DeviceNews {
    std::vector<Arrival> _arrived;
    std::vector<InputChange> _changes;
    std::vector<int> _left;
};

/// The controllers of this machine, as far as this project needs to know them. Tests hand in their own.
/// Threads: all from open() to close() on one thread.
class ControllerDevices {
public:
    virtual ~ControllerDevices() = default;

    /// The next poll() shows what is plugged in as having arrived. Throws std::runtime_error, and may be tried again.
    virtual void open() = 0;
    virtual void close() = 0;

    virtual DeviceNews poll() = 0;

    /// Replaces what the motors of the device are doing. False where it has none or did not take it.
    virtual bool rumble(int device, const Rumble& rumble) = 0;
};

} // namespace Trovio::Nodes
