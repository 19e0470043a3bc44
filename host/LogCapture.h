#pragma once

#include "osg/Log.h"

#include <mutex>
#include <string>

namespace Host {

/// Keeps the log's lines from a terminal on which something is drawn, until they are asked for. What nobody asked for
/// goes to standard error in the end. Does nothing while the log goes to a file.
/// Threads: lines come from any thread; the rest is the scene thread's.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// The lines that came since the last call, each with its line end.
    std::string take();

private:
    bool keep(const osg::LogRecord& record);

    osg::Log::Hook _previous;
    osg::LogHeader _header;
    std::mutex _lock; // leaf, taken under the log lock
    std::string _lines;
};
} // namespace Host
