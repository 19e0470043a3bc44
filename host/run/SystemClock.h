#pragma once

#include "host/run/StopSignal.h"
#include "scene/run/FrameClock.h"

namespace Host {

/// The machine's clocks; a stop signal ends every wait.
class SystemClock final : public Scenes::FrameClock {
public:
    explicit SystemClock(const StopSignal& stop) : _stop(stop) {}

    double now() override;
    double steady() override;
    bool waitUntil(double time) override;

private:
    const StopSignal& _stop;
};
} // namespace Host
