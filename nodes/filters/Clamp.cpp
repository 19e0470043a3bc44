#include "nodes/filters/Clamp.h"

#include "nodes/filters/FilterLane.h"
#include "nodes/shared/NumberList.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

template <class E>
class ClampFormula : public Stateless {
public:
    explicit ClampFormula(const Settings& settings)
        : _lows(readBounds(settings, "low")), _highs(readBounds(settings, "high"))
    {
        for (std::size_t i = 0; i < _lows.size(); ++i)
            if (_lows[i] > _highs[i])
                throw settings.refusal("low", "numbers not above those of 'high'");
    }

    Outcome operator()(E& element, State&, double) const
    {
        return changeComponents(element,
                                [this](std::size_t i, double x) { return std::clamp(x, _lows[i], _highs[i]); });
    }

private:
    static std::vector<double> readBounds(const Settings& settings, const char* name)
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return readComponents(settings, name, Components<E>::Count, {-infinity, infinity});
    }

    std::vector<double> _lows, _highs; // in the signal's unit
};

struct ClampFilter {
    template <Measure E>
    using Formula = ClampFormula<E>;
};

} // namespace

Clamp::Clamp(Clock& clock) : FilterNode(clock, createFilterLane<ClampFilter>) {}

const NodeTypeEntry& Clamp::getEntry()
{
    static const RelayTable table(fittingTypes<ClampFilter>(), "Float",
                                  {Setting::text("low", "-inf", "lower bound; -inf: none", numberList),
                                   Setting::text("high", "inf", "upper bound; inf: none", numberList)});
    static const NodeTypeEntry entry{"Clamp", "holds values between two bounds", table.rows(),
                                     createOnSystemClock<Clamp>};
    return entry;
}

} // namespace Trovio::Nodes
