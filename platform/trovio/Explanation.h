#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Trovio {

/// Whether records flow between two labels, or the first cause why they do not, in the order in which one would look.
enum class Verdict {
    Flowing,
    NoSuchLabel,
    NoMatch, // of a pattern
    WrongDirection,
    TypesDiffer,
    NoExternalRoute, // the slot is there, but its namespace does not show it
    NoRoute,
    Loop, // of nodes, so a route does not connect
    NodeDegraded,
    NeverWritten,
    Stale,
    Filtered,    // records go into a node and do not come out
    Overwritten, // before anybody took them
    Unread,      // a record waits, and nobody has taken one
    Interrupted, // the reader was, and has taken nothing since
    NotMade,     // what the label belongs to; said by programs that make it, such as from a scene file
    NotStored,   // there was no memory for what came
};

/// "flowing", "no such label", …; never null.
const char* toString(Verdict verdict);

/// The answer to "why does nothing arrive?".
struct Explanation {
    struct Detail {
        std::string _name;
        std::variant<std::string, double> _value;
    };

    Verdict _verdict = Verdict::Flowing;
    std::string _text;            // one line
    std::vector<Detail> _details; // what the text says, for programs: labels, types, counts, seconds
    /// The slots that records pass on their way, from the first to the last, as their labels are seen where it was
    /// asked. Empty where no way leads there, and where a route on it does not connect.
    std::vector<std::string> _passes{};

    /// Null if there is no such detail, or if it is a number.
    const std::string* findText(const std::string& name) const;
    /// Nothing if there is no such detail, or if it is a text.
    std::optional<double> findNumber(const std::string& name) const;
};

} // namespace Trovio
