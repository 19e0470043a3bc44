#pragma once

#include "scene/run/Session.h"
#include "trovio/Explanation.h"

#include <optional>

namespace Host {

/// Explains the connection in the namespace that knows the labels: those of a handler, as scene files give them, or
/// those of the root, with "Context/" before them. Throws Trovio::Exception for a bad pattern.
Trovio::Explanation explainLabels(const std::string& from, const std::string& to, double staleAfter);

/// What would help: where types differ the field type, or the setting of a node; where a route is missing its line.
/// Empty if nobody can say.
std::string whatFits(const Trovio::Explanation& explanation, const Scenes::Session& session);

/// Decides when an answer may be given. That types differ is one at once; everything else may pass, while devices come
/// up and first records travel, or may not have shown yet, such as losses: so it has to last for a while.
class WhyDecision {
public:
    /// `patience` in seconds.
    explicit WhyDecision(double patience) : _patience(patience) {}

    /// Takes what was found at that time, in seconds of a steady clock. Whether there is an answer.
    bool take(const Trovio::Explanation& found, double now);

    /// The answer, or else what was found last.
    Trovio::Explanation answer() const;

private:
    const double _patience;
    std::optional<double> _start;
    Trovio::Explanation _last;
    double _since = 0;                            // when its verdict was first seen
    double _writtenBefore = 0;                    // by then
    std::optional<Trovio::Explanation> _flowing;  // the newest look at which records flowed
    std::optional<Trovio::Explanation> _stopping; // and at which they did not
    bool _changesAlways = false;                  // no verdict lasts
};
} // namespace Host
