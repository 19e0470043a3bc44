#pragma once

#include "host/Session.h"
#include "trovio/Explanation.h"

#include <optional>

namespace Host {

/// Explains the connection in the namespace that knows the labels: those of a handler, as scene files give them, or
/// those of the root, with "Context/" before them. Throws Trovio::Exception for a bad pattern.
Trovio::Explanation explainLabels(const std::string& from, const std::string& to, double staleAfter);

/// Where types differ: the field type, or the setting of a node, that would fit. Else empty.
std::string whatFits(const Trovio::Explanation& explanation, const Session& session);

/// Decides when an answer may be given: at once that records flow or that types differ; everything else may pass, while
/// devices come up and first records travel, so it has to last for a while.
class WhyDecision {
public:
    /// `patience` in seconds.
    explicit WhyDecision(double patience) : _patience(patience) {}

    /// Takes what was found at that time, in seconds of a steady clock. Whether it is the answer.
    bool take(Trovio::Verdict verdict, double now);

private:
    const double _patience;
    std::optional<Trovio::Verdict> _last;
    double _since = 0; // when the last verdict was first seen
};
} // namespace Host
