#pragma once

#include "host/run/StopSignal.h"
#include "scene/run/SystemClock.h"

namespace Host {

/// The machine's clocks; a stop signal ends every wait.
/// Ownership: refers to the signal, which must live as long. Threads: any.
class StoppableClock final : public Scenes::SystemClock {
public:
    explicit StoppableClock(const StopSignal& stop) : _stop(stop) {}

    bool waitUntil(double time) override;

private:
    const StopSignal& _stop;
};
} // namespace Host
