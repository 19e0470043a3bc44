#pragma once

#include "nodes/filters/ElementWise.h"
#include "nodes/relay/TypeChoices.h"
#include "nodes/relay/TypedLane.h"
#include "trovio/SlotTypes.h"
#include <memory>

namespace Trovio::Nodes {

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
