#pragma once

#include "explain/HangingNode.h"
#include "host/run/StopSignal.h"
#include "scene/run/LoadedScene.h"

#include <atomic>
#include <thread>

namespace Host {

/// Makes sure that the program ends: from the first signal on, or once the run ends by itself, it names a node whose
/// start, stop, settings or destructor has taken a second, again every five; with the second signal it says which one
/// it was and ends the process with 128 + the signal's number.
/// Ownership: refers to the signal, which must live as long.
/// Threads:   one of its own, which calls `say`; that must not block.
class EndWatch {
public:
    /// Throws std::system_error when there can be no more threads.
    EndWatch(const StopSignal& stop, Scenes::Say say);
    ~EndWatch();
    EndWatch(const EndWatch&) = delete;
    EndWatch& operator=(const EndWatch&) = delete;

    /// The run ends by itself.
    void begin();

private:
    void watch();
    void tellOfHangingNode();
    void endAtOnce() const;

    const StopSignal& _stop;
    const Scenes::Say _say;
    std::atomic<bool> _begun{false}, _over{false};
    Explain::HangingNode _hanging; // the thread's
    std::thread _thread;
};
} // namespace Host
