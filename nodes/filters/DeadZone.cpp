#include "nodes/filters/DeadZone.h"

#include "nodes/filters/FilterLane.h"
#include "nodes/shared/NumberList.h"

namespace Trovio::Nodes {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

template <class E>
class DeadZoneFormula : public Stateless {
public:
    explicit DeadZoneFormula(const Settings& settings)
    {
        constexpr std::size_t count = Components<E>::Count;
        const auto zones = readComponents(settings, "zone", count, {0.0, 1e12});
        const auto centres = readComponents(settings, "centre", count);
        const auto fulls = readComponents(settings, "full", count, {0.0, infinity});
        for (std::size_t i = 0; i < count; ++i) {
            if (fulls[i] <= zones[i])
                throw settings.refusal("full", "numbers above those of 'zone', and inf");
            const double slope = fulls[i] == infinity ? 1.0 : fulls[i] / (fulls[i] - zones[i]);
            _channels.push_back({zones[i], centres[i], slope});
        }
    }

    Outcome operator()(E& element, State&, double) const
    {
        return changeComponents(element, [this](std::size_t i, double x) { return _channels[i].apply(x); });
    }

private:
    struct Channel {
        double _zone, _centre; // in the signal's unit
        double _slope;         // outside the zone

        double apply(double x) const
        {
            const double beyond = std::abs(x - _centre) - _zone;
            return beyond <= 0.0 ? _centre : _centre + std::copysign(beyond * _slope, x - _centre);
        }
    };
    std::vector<Channel> _channels; // one for each component
};

struct DeadZoneFilter {
    template <Measure E>
    using Formula = DeadZoneFormula<E>;
};

} // namespace

DeadZone::DeadZone(Clock& clock) : FilterNode(clock, createFilterLane<DeadZoneFilter>) {}

const NodeTypeEntry& DeadZone::getEntry()
{
    static const RelayTable table(
        fittingTypes<DeadZoneFilter>(), "Float",
        {Setting::text("zone", "0.1", "how far from the centre nothing is felt", numberList),
         Setting::text("centre", "0", "value at rest", numberList),
         Setting::text("full", "1",
                       "distance from the centre that stays as it is, e.g. the stop of a stick; inf: values only move "
                       "by the zone",
                       numberList)});
    static const NodeTypeEntry entry{"DeadZone", "silences small deviations from rest, without a jump at the edge",
                                     table.rows(), createOnSystemClock<DeadZone>};
    return entry;
}

} // namespace Trovio::Nodes
