#pragma once

#include "osg/Log.h"

#include <mutex>
#include <string>

namespace Host {

/// What a person at the terminal sees of the log during a run. Informational lines of nodes, such as where they listen,
/// are shown without their header; those of the library only where the run is verbose. While a table is drawn, lines
/// are held back until it asks for them. A log file gets everything as ever.
/// Threads: lines come from any thread; the rest is the scene thread's. One object at a time.
class RunLog {
public:
    explicit RunLog(bool verbose);
    ~RunLog();
    RunLog(const RunLog&) = delete;
    RunLog& operator=(const RunLog&) = delete;

    /// Whether lines are held back from now on. When that ends, those that nobody took are written.
    void hold(bool held);

    /// The lines held back since the last call, each with its line end.
    std::string take();

private:
    bool hear(const osg::LogRecord& record);
    std::string takeLocked();

    const bool _verbose;
    const bool _toFile; // then the log itself writes nothing to standard error
    osg::LogHeader _header;
    osg::Log::Hook _previous;
    std::mutex _lock; // leaf, taken under the log's lock
    bool _held = false;
    std::string _lines;
    std::size_t _left = 0; // lines that found no more room since the last take()
};
} // namespace Host
