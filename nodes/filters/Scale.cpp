#include "nodes/filters/Scale.h"

#include "nodes/filters/FilterLane.h"
#include "nodes/shared/NumberList.h"

namespace Trovio::Nodes {

namespace {

template <class E>
class ScaleFormula : public Stateless {
public:
    explicit ScaleFormula(const Settings& settings)
        : _gains(readComponents(settings, "gain", Components<E>::Count)),
          _offsets(readComponents(settings, "offset", Components<E>::Count))
    {
    }

    Outcome operator()(E& element, State&, double) const
    {
        return changeComponents(element, [this](std::size_t i, double x) { return _gains[i] * x + _offsets[i]; });
    }

private:
    std::vector<double> _gains;
    std::vector<double> _offsets; // in the signal's unit
};

struct ScaleFilter {
    template <Measure E>
    using Formula = ScaleFormula<E>;
};

} // namespace

Scale::Scale(Clock& clock) : FilterNode(clock, createFilterLane<ScaleFilter>) {}

const NodeTypeEntry& Scale::getEntry()
{
    static const RelayTable table(
        fittingTypes<ScaleFilter>(), "Float",
        {Setting::text("gain", "1", "what values are multiplied by", numberList),
         Setting::text("offset", "0", "what is added then, in the signal's unit", numberList)});
    static const NodeTypeEntry entry{"Scale", "multiplies values by a gain and adds an offset", table.rows(),
                                     createOnSystemClock<Scale>};
    return entry;
}

} // namespace Trovio::Nodes
