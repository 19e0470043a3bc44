#pragma once

#include "scene/run/FrameClock.h"

namespace Scenes {

/// The machine's clocks. Threads: any.
class SystemClock : public FrameClock {
public:
    double now() override;
    double steady() override;
    /// Never asks to stop.
    bool waitUntil(double time) override;
};
} // namespace Scenes
