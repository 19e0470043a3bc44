#pragma once

#include <string>

namespace Host {

/// The keys of the terminal at standard input, as they are pressed and without an echo. Ctrl-C and its like stay
/// signals. The terminal gets its settings back when the object goes, when the program stops, and when it ends by a
/// signal. Without a terminal there nothing is touched and no key ever comes. In the background nothing is touched
/// either. One object per process; not to be used while another thread changes the handling of signals.
class Keyboard {
public:
    Keyboard();
    ~Keyboard();
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    /// What was typed since the last call; never waits.
    std::string read();

    /// Whether the last read() took the terminal over anew, at first or from a shell.
    bool isBack() const { return _isBack; }

    /// Gives the terminal its settings back, without a destructor that runs. Safe in a signal handler; any thread.
    static void restore();
    /// The same where the program ends now: a read() on another thread does not take it over again.
    static void restoreForGood();

private:
    const bool _isThere;
    bool _isBack = false;
};
} // namespace Host
