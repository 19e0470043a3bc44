#pragma once

#include "sensorManager/TrovioSensorHandler.h"

namespace Ostrel {

/// Moves values between one sensor's field and its slot, in the direction of the slot.
/// Invariant: the slot stands in the handler's namespace under _slotLabel as long as the observer lives.
/// Threads:   the scene thread; the slot is shared with whoever is connected.
class TrovioSensorHandler::UpdateObserver : public SensorHandler::UpdateObserver {
public:
    UpdateObserver(TrovioSensorHandler& handler, const std::string& slotLabel);
    ~UpdateObserver() override;

    /// Takes the records that wait, in the slot's order, and announces each with the frame's time: at most 64, or twice
    /// what the slot holds if that is more. True if at least one was taken.
    bool update(const TimeStamp& now) override;

    /// Pushes the field's value, changed or not, stamped with the current time.
    void updateOutput(const TimeStamp& now) override;

private:
    friend class TrovioSensorHandler;

    Trovio::Slot* _slot = nullptr; // owned; null until it stands in the namespace
    std::string _slotLabel;
    TrovioSensorHandler* _handler; // not owned; outlives its observers
};

} // namespace Ostrel
