#pragma once

#include <string>

namespace Trovio::Nodes {

/// The messages of the DDS library, rephrased: they go to our log, or to the caller that opens something and reports
/// why that failed. Before the library aborts, its last messages go straight to standard error.
/// Threads: any; messages come on those of the library, too.
class DdsLog {
public:
    /// From now on, for the whole program. Call it before the library is used.
    static void takeOver();

    /// While it lives, the messages that the library writes on this thread are kept here instead. They nest.
    class Listening {
    public:
        Listening();
        ~Listening();
        Listening(const Listening&) = delete;
        Listening& operator=(const Listening&) = delete;
        const std::string& text() const { return _text; }
        void add(const std::string& message) { _text += (_text.empty() ? "" : "; ") + message; }

    private:
        std::string _text;
        Listening* const _outer; // of this thread
    };
};

} // namespace Trovio::Nodes
