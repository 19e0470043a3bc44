#pragma once

#include "host/run/FileWatch.h"
#include "host/run/StopSignal.h"

#include <atomic>
#include <functional>
#include <optional>
#include <thread>

namespace Host {

/// Whether the process has a terminal that may hang up: then SIGHUP says that it was closed.
bool hasControllingTerminal();

/// Has a run's scenes read anew: when their files are saved, and by SIGHUP where no terminal can hang up.
/// Ownership: refers to the signal, which must live as long.
/// Threads:   one of its own, which calls `reload`.
class ReloadThread {
public:
    /// What makes it call.
    struct Reasons {
        std::vector<std::string> _files; // that are watched; empty for none
        bool _hangUp = false;
    };

    /// Throws std::system_error where the system gives no thread, or does not let the files be watched.
    ReloadThread(const StopSignal& stop, const Reasons& reasons, std::function<void()> reload);
    /// Waits for the end of a reload that goes on.
    ~ReloadThread();
    ReloadThread(const ReloadThread&) = delete;
    ReloadThread& operator=(const ReloadThread&) = delete;

private:
    void run();
    bool waitForReason();
    void waitForQuiet();
    bool watchAnew();
    bool takeWakeUp();

    const StopSignal& _stop;
    const std::function<void()> _reload;
    const std::vector<std::string> _paths; // of the files that are watched
    std::optional<FileWatch> _files;       // none while a folder is gone
    std::atomic<bool> _isOver{false};
    int _wakeUp = -1; // an eventfd: SIGHUP, or the end
    std::thread _thread;
};
} // namespace Host
