#include "nodes/filters/convert/Axes.h"

#include "nodes/filters/FilterLane.h"
#include "nodes/filters/convert/AxisOrder.h"
#include <numbers>

namespace Trovio::Nodes {

namespace {

/// What one of each unit is in metres or radians, in the order of the setting's choices.
constexpr const char* unitChoices = "m|cm|mm|in|ft|rad|deg";
constexpr double unitFactors[] = {1.0, 0.01, 0.001, 0.0254, 0.3048, 1.0, std::numbers::pi / 180.0};

AxisOrder readOrder(const Settings& settings, const char* name, std::size_t count)
{
    const std::string& text = settings.text(name);
    const auto letters = AxisOrder::Letters.substr(0, count);
    if (const auto order = AxisOrder::parse(text.empty() ? letters : text, count))
        return *order;
    throw settings.refusal(name, "each of the letters " + std::string(letters) +
                                     " once, as a capital where it is to be negated, or nothing");
}

double readFactor(const Settings& settings)
{
    return unitFactors[settings.choice("unit")];
}

/// Numbers and vectors: component i of the result is factor * sign * the component that letter i names.
template <class E>
class AxesFormula : public Stateless {
public:
    explicit AxesFormula(const Settings& settings)
        : _axes(readOrder(settings, "axes", Components<E>::Count)), _factor(readFactor(settings))
    {
        refuseIfGiven(settings, "order", "Rotation");
    }

    Outcome operator()(E& element, State&, double) const
    {
        const E before = element;
        return changeComponents(element, [&](std::size_t i, double) {
            return _factor * _axes.sign(i) * double(Components<E>::get(before, _axes.source(i)));
        });
    }

private:
    AxisOrder _axes;
    double _factor;
};

/// The axis of a rotation changes its places and signs like a vector, and turns the other way round in a mirror.
template <>
class AxesFormula<Rotation> : public Stateless {
public:
    explicit AxesFormula(const Settings& settings)
        : _order(readOrder(settings, "order", 4)), _axes(readOrder(settings, "axes", 3))
    {
        refuseIfGiven(settings, "unit", "all but Rotation and Matrix3");
    }

    Outcome operator()(Rotation& rotation, State&, double) const
    {
        double named[4];
        for (std::size_t i = 0; i < 4; ++i)
            named[_order.source(i)] = _order.sign(i) * double(rotation[i]);
        const double hand = _axes.isMirror() ? -1.0 : 1.0;
        const auto axis = [&](std::size_t i) { return hand * _axes.sign(i) * named[_axes.source(i)]; };
        rotation = Quaternion(axis(0), axis(1), axis(2), named[3]).toRotation();
        return Outcome::Sent;
    }

private:
    AxisOrder _order; // of the components as they arrive
    AxisOrder _axes;
};

/// A change of axes takes rows and columns alike, so that it does not matter which of them are the axes.
template <Matrix E>
class AxesFormula<E> : public Stateless {
public:
    explicit AxesFormula(const Settings& settings)
        : _axes(readOrder(settings, "axes", 3)), _factor(readFactor(settings))
    {
        refuseIfGiven(settings, "order", "Rotation");
        if (E::order() == 3)
            refuseIfGiven(settings, "unit", "all but Rotation and Matrix3");
    }

    Outcome operator()(E& matrix, State&, double) const
    {
        constexpr std::size_t n = E::order();
        const E before = matrix;
        return changeComponents(matrix, [&](std::size_t at, double) {
            const std::size_t i = at / n, j = at % n;
            const double moved = _axes.sign(i) * _axes.sign(j) * double(before[_axes.source(i) * n + _axes.source(j)]);
            // The translation stands in the last column, or in the last row; the other one is 0.
            return (i == 3) != (j == 3) ? _factor * moved : moved;
        });
    }

private:
    AxisOrder _axes;
    double _factor;
};

struct AxesFilter {
    template <class E>
    requires(isOneOf<E, double, float, Rotation> || Vector<E> || Matrix<E>) using Formula = AxesFormula<E>;
};

} // namespace

Axes::Axes(Clock& clock) : FilterNode(clock, createFilterLane<AxesFilter>) {}

const NodeTypeEntry& Axes::getEntry()
{
    static const RelayTable table(
        fittingTypes<AxesFilter>(), "Vec3f",
        {Setting::text("axes", "",
                       "which arriving axis each leaving one is, as a capital where it is negated, e.g. xZy; empty: as "
                       "they come",
                       "each of the letters x, y, z, as many as the type has, once, or nothing"),
         Setting::choice("unit", "m", unitChoices, "unit of what arrives; metres or radians leave"),
         Setting::text("order", "xyzw",
                       "order in which the components of a rotation arrive, as a capital where one is negated; they "
                       "leave as xyzw",
                       "each of the letters x, y, z, w once, or nothing")});
    static const NodeTypeEntry entry{"Axes", "changes units, order and sign of axes, and the hand of the system",
                                     table.rows(), createOnSystemClock<Axes>};
    return entry;
}

} // namespace Trovio::Nodes
