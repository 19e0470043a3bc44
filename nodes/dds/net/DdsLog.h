#pragma once

#include <string>

namespace Trovio::Nodes {

/// The messages of the DDS library, in our words: they go to our log, or to who opens something and wants to say why
/// that failed. Its last words before it aborts go straight to standard error, and so does that it aborts.
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
