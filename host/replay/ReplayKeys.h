#pragma once

#include "host/replay/ReplayPace.h"
#include "host/show/View.h"

#include <memory>

namespace Host {

/// The keys of a replay: space pauses and goes on, right shows the next frame, up and down change the speed. All others
/// are the view's.
/// Ownership: refers to the pace. Threads: the scene thread.
class ReplayKeys {
public:
    explicit ReplayKeys(ReplayPace& pace) : _pace(pace) {}

    void press(const KeyPress& press, View& view);
    /// Presses what was typed since the last call. Whether anything was.
    bool read(View& view);

private:
    ReplayPace& _pace;
    Keyboard _keyboard;
    KeyPresses _presses;
};
} // namespace Host
