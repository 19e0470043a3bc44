#pragma once

#include "trovio/Explanation.h"

#include <functional>
#include <optional>
#include <string>

namespace Explain {

/// Explains the connection in the namespace that knows the labels: those of a handler, as scene files give them, or
/// those of the root, with "Context/" before them. A record older than `staleAfter` seconds is stale. Any thread.
/// Throws Trovio::Exception for a bad pattern.
Trovio::Explanation explainLabels(const std::string& from, const std::string& to, double staleAfter);

/// Whether a slot with that label serves a sensor, whose type can be chosen.
using IsSensor = std::function<bool(const std::string& label)>;

/// What would help where the types of two slots differ: another type for the sensor, or another setting for the node,
/// at one of the ends. Empty for other answers, and if nobody can say. Any thread.
std::string whatFits(const Trovio::Explanation& explanation, const IsSensor& isSensor = {});

/// Decides when an answer may be given. That types differ is one at once; everything else may pass, while devices come
/// up and first records travel, or may not have shown yet, such as losses: so it has to last for a while.
/// Threads: one.
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
    std::optional<Trovio::Explanation> _flowing;  // the newest answer while records flowed
    std::optional<Trovio::Explanation> _stopping; // and while they did not
    bool _changesAlways = false;                  // no verdict lasts
};
} // namespace Explain
