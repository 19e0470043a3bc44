#pragma once

namespace Host {

/// SIGINT, SIGTERM and SIGHUP as a request to stop; a second SIGINT or SIGTERM ends the process at once with 128 + its
/// number. SIGHUP stays ignored where it was, as nohup wants it. A reader of standard output that goes away is an error
/// of writing, no signal.
/// One object per process, living longer than everything that waits on it.
class StopSignal {
public:
    /// Throws std::system_error when the pipe cannot be made.
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    bool requested() const;

    /// Blocks for up to `seconds` or until a stop is requested; any thread.
    void wait(double seconds) const;

private:
    bool _hearsHangUp = false;
};
} // namespace Host
