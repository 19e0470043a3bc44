#pragma once

#include "nodes/filters/ElementWise.h"
#include "nodes/relay/RelayNode.h"
#include "nodes/relay/TypeChoices.h"
#include "trovio/SlotTypes.h"
#include <array>

namespace Trovio::Nodes {

/// A relay that applies a formula to each value. What a formula is, ElementWise.h says.
/// Threads: as for every relay; the formula runs on the node's thread only.
class FilterNode : public RelayNode {
public:
    /// Throws InvalidFieldException.
    using CreateLane = std::unique_ptr<Lane> (*)(const Settings& settings, unsigned queue);
    FilterNode(Clock& clock, CreateLane create);

    /// Of 'out': what was rejected, and since when.
    std::vector<RemarkInfo> getRemarks() const override;

private:
    std::unique_ptr<Lane> createLane(const Settings& settings) override;
    void countRejected(Outcome outcome) override;

    /// The newest records that were rejected one after the other.
    struct Run {
        std::uint64_t _after = 0; // records sent before it
        std::uint64_t _length = 0;
        Time _first, _last; // when they came
    };

    const CreateLane _createLane;
    std::array<Counter*, 3> _rejected; // by Outcome, without Sent
    mutable Ostrel::Mutex _runLock{Ostrel::LockRank::Leaf};
    Run _run OSTREL_GUARDED_BY(_runLock);
};

/// Whether the filter has a formula for a slot value type, or for its elements. Filter::Formula<E> is constrained to
/// the element types that the filter makes sense for.
template <class Filter, class T>
concept FilterOf = requires
{
    typename Filter::template Formula<typename ElementOf<T>::Type>;
};

/// The names of the types that a filter makes sense for, as choices of a setting.
template <class Filter>
std::string fittingTypes()
{
    return typeChoices([]<class T>(TypeTag<T>) { return FilterOf<Filter, T>; });
}

template <class Filter>
std::unique_ptr<Lane> createFilterLane(const Settings& settings, unsigned queue)
{
    std::unique_ptr<Lane> lane;
    withSlotType(settings.text("type"), [&]<class T>(TypeTag<T>) {
        if constexpr (FilterOf<Filter, T>) {
            using Process = ElementWise<T, typename Filter::template Formula<typename ElementOf<T>::Type>>;
            lane = std::make_unique<TypedLane<T, Process>>(queue, Process(settings));
        }
    });
    return lane;
}

} // namespace Trovio::Nodes
