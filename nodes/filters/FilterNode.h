#pragma once

#include "nodes/relay/RelayNode.h"
#include <array>
#include <functional>

namespace Trovio::Nodes {

/// What is wrong with records that a filter rejects, by Outcome from BadValue on; stands behind "rejected 3 ".
using RejectionCauses = std::array<const char*, 3>;
inline constexpr RejectionCauses usualCauses{
    "with a value that is not finite (NaN, infinite, or a rotation without direction)",
    "with a result beyond the limits of its type", "stamped no later than the one before"};

/// A relay that applies a formula to each value: a lane of FilterLane.h, or one of its own.
/// Threads: as for every relay; the formula runs on the node's thread only.
class FilterNode : public RelayNode {
public:
    /// Throws InvalidFieldException.
    using CreateLane = std::function<std::unique_ptr<Lane>(const Settings& settings, unsigned queue)>;
    /// keptName: what counts the records that are neither sent nor rejected, where there are such.
    FilterNode(Clock& clock, CreateLane create, const RejectionCauses& causes = usualCauses,
               const char* keptName = nullptr);

    std::unique_ptr<Lane> createLane(const Settings& settings) override;

    /// Of each out-slot: what was rejected, and since when.
    std::vector<RemarkInfo> getRemarks() const override;

private:
    void countUnsent(Outcome outcome) override;
    std::uint64_t countPassed() const; // all but those that were rejected

    /// The newest records that were rejected one after the other.
    struct Run {
        std::uint64_t _after = 0; // records that passed before it
        std::uint64_t _length = 0;
        Time _first, _last; // when they came
    };

    const CreateLane _createLane;
    const RejectionCauses _causes;
    std::array<Counter*, 3> _rejected; // by Outcome, without Sent
    Counter* const _kept;              // null where every record is sent or rejected
    mutable Ostrel::Mutex _runLock{Ostrel::LockRank::Leaf};
    Run _run OSTREL_GUARDED_BY(_runLock);
};

/// For settings that mean nothing to values of the type: refuses one that was given. what: where it means something.
void refuseIfGiven(const Settings& settings, const char* name, const char* what);

} // namespace Trovio::Nodes
