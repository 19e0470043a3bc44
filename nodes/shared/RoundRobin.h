#pragma once

namespace Trovio::Nodes {

/// Rounds over all sources before the thread does other work.
constexpr int maxRoundsAtOnce = 256;

/// Calls takeOne(source), which says whether there was something to take, for each source in turn, so that a busy one
/// does not hold up the others: until none has anything, goesOn() says no, or maxRoundsAtOnce. True if there may be
/// more.
template <class Sources, class TakeOne, class GoesOn>
bool takeInTurn(const Sources& sources, TakeOne takeOne, GoesOn goesOn)
{
    bool foundAny = true;
    for (int round = 0; foundAny && round < maxRoundsAtOnce && goesOn(); ++round) {
        foundAny = false;
        for (const auto& source : sources)
            foundAny = takeOne(*source) || foundAny;
    }
    return foundAny;
}

} // namespace Trovio::Nodes
