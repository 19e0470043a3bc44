#pragma once

#include "host/output/QueuedOutput.h"
#include "host/output/QueuedStream.h"

#include <optional>
#include <string>

namespace Host {

/// A QueuedOutput::GapLine for people.
std::string droppedAsText(std::uint64_t dropped, std::uint64_t inAll);

/// Where a run writes without ever waiting for a reader: values to standard output, messages to standard error, the log
/// to its file, each through a queue. Where both outputs are one (a terminal, 2>&1), they share a queue and stay in
/// order. Should the program crash, it waits for the queues first, so that the last words get out.
/// Threads: messages() and logFile() from any, the rest from the scene thread. One object per process.
class RunOutput {
public:
    /// `droppedLine` is the line among the values that tells of dropped ones, in the format of the values.
    explicit RunOutput(QueuedOutput::GapLine droppedLine);
    ~RunOutput();
    RunOutput(const RunOutput&) = delete;
    RunOutput& operator=(const RunOutput&) = delete;

    std::ostream& values() { return _stream; }
    /// Whether the last values that were put have been written.
    bool isTaken() const { return _stream.isTaken(); }
    /// False once nobody can read the values any more.
    bool canWrite() const { return _values.state() == QueuedOutput::State::Open; }
    /// Values that are queued even where there is no room.
    void putLast(const std::string& lines) { _values.putLast(lines); }

    void say(const std::string& line) { messages().put(line + "\n"); }
    QueuedOutput& messages() { return _messages ? *_messages : _values; }

    /// Null where the environment names no log file.
    QueuedOutput* logFile() { return _logFile ? &*_logFile : nullptr; }
    /// What to say once the log file cannot be written, with what it did not take.
    std::string logFileFailure();

    /// Says what was dropped, and waits at most a second for all that was put. Returns the exit code: `code`, or Failed
    /// where values could not be written. A closed pipe is no failure.
    int finish(int code);

private:
    void sayOfValues(const std::string& left);

    QueuedOutput _values;
    QueuedStream _stream{_values};
    std::optional<QueuedOutput> _messages; // unless it is the same as _values
    std::optional<QueuedOutput> _logFile;
};
} // namespace Host
