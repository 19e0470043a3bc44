#pragma once

namespace Host {

/// SIGINT, SIGTERM and SIGHUP as a request to stop; a second SIGINT or SIGTERM ends the process at once with 128 + its
/// number. SIGHUP stays ignored where it was, as nohup wants it. SIGPIPE is ignored: a reader that has gone shows as a
/// failed write.
/// One object per process, living longer than everything that waits on it.
class StopSignal {
public:
    /// Throws std::system_error when the pipe cannot be made.
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    /// From now on SIGHUP asks for no stop, but waits for sendHangUpTo(). Does nothing where SIGHUP is ignored.
    void keepHangUp() const;
    bool keepsHangUp() const;
    /// From now on SIGHUP asks for no stop, but becomes readable at this eventfd, as one that was kept does at once; -1
    /// for a stop again. Does nothing where SIGHUP is ignored.
    void sendHangUpTo(int eventfd) const;

    bool requested() const;
    /// From any thread, when the run ends by itself: whoever waits in waitForNews() hears of it as of a signal.
    void tell() const;

    /// For the one thread that watches the end: blocks until something has happened, or for up to `seconds`.
    void waitForNews(double seconds) const;
    /// Whether there is such a thread. It then ends the process at the second signal; a third one still does at once.
    void setWatched(bool watched) const;
    /// The number of the second signal; 0 before.
    int second() const;

    /// Blocks for up to `seconds` or until a stop is requested; any thread.
    void wait(double seconds) const;

private:
    bool _hearsHangUp = false;
};
} // namespace Host
