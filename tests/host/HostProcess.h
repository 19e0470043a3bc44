#pragma once

#include <string>
#include <sys/ioctl.h>
#include <sys/types.h>
#include <vector>

/// The real program, or another one, as a child process whose output is read here.
/// Ownership: the destructor kills the child if it still runs, and reaps it. Threads: one.
class HostProcess {
public:
    /// Starts `program`, with its standard input at its end.
    /// With a size on a terminal of its own, to which both outputs go. Throws std::system_error when it cannot.
    HostProcess(const std::string& program, const std::vector<std::string>& arguments,
                const winsize* terminal = nullptr);
    ~HostProcess();
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    /// Reads until `text` was written to either output, as a whole, or both are closed; whether it was written.
    bool waitFor(const std::string& text);
    /// The same, but gives up after that many milliseconds without any output.
    bool waitFor(const std::string& text, int patience);

    void signal(int number) const;
    /// Closes this end of the child's standard output.
    void stopReading();
    /// Leaves the child's standard output unread, or reads it again.
    void pauseReading(bool paused) { _paused = paused; }
    /// The terminal's other end; -1 without one.
    int terminal() const { return _terminal; }
    /// Reads to the end and returns the exit code, or 1000 + the number of the signal that ended it.
    int wait();

    const std::string& out() const { return _out._text; }
    const std::string& err() const { return _err._text; }

private:
    struct Stream {
        int _end = -1;
        std::string _text;
    };
    bool readMore(int patience);

    pid_t _child = -1;
    Stream _out, _err;
    bool _paused = false;
    int _terminal = -1;
};
