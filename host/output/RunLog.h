#pragma once

#include "osg/Log.h"

#include <mutex>
#include <string>

namespace Host {

class RunOutput;

/// What a person at the terminal sees of the log during a run. Informational lines of nodes, such as where they listen,
/// are shown without their header; those of the library only where the run is verbose. While a table is drawn, lines
/// are held back until it asks for them. A log file gets everything as ever. The log's lock is held meanwhile, so
/// during a run nothing is written here: lines only go to the queues of the run's output. Threads: lines come from any
/// thread; the rest is the scene thread's. One object at a time.
class RunLog {
public:
    /// Without `output` the lines go straight to standard error and to the file: for what waits for its reader.
    explicit RunLog(bool verbose, RunOutput* output = nullptr);
    ~RunLog();
    RunLog(const RunLog&) = delete;
    RunLog& operator=(const RunLog&) = delete;

    /// Whether lines are held back from now on. When that ends, those that nobody took are written.
    void hold(bool held);

    /// The lines held back since the last call, each with its line end.
    std::string take();

    /// Forgets those lines, and how many the log itself has held back: what they say is told elsewhere.
    void discard();

    /// Writes the lines that are held back straight to standard error: for a crash, from its signal handler.
    static void writeHeld() noexcept;

private:
    bool hear(const osg::LogRecord& record);
    std::string takeLocked();
    void putToFile(const std::string& line);
    void show(const std::string& lines);

    const bool _verbose;
    RunOutput* const _output;
    bool _toFile; // then lines with a header are not shown; under the log's lock
    osg::LogHeader _header;
    osg::Log::Hook _previous;
    std::mutex _lock; // between the log's lock and those of the queues; a handler of signals tries it
    bool _held = false;
    std::string _lines;
    std::size_t _left = 0; // lines that found no more room since the last take()
};
} // namespace Host
