#include "nodes/filters/convert/Align.h"

#include "nodes/filters/FilterLane.h"
#include "nodes/relay/RotationMatrix.h"
#include "nodes/shared/NumberList.h"

namespace Trovio::Nodes {

namespace {

Quaternion readTurn(const Settings& settings)
{
    const auto numbers = readComponents(settings, "rotation", 4);
    const Quaternion turn(numbers[0], numbers[1], numbers[2], numbers[3]);
    if (splitWords(settings.text("rotation")).size() != 4 || turn.length() == 0.0)
        throw settings.refusal("rotation", "four numbers x y z w, not all of them 0, separated by blanks");
    return turn.normalized();
}

/// Where points of the old room are in the new one.
class RoomChange {
public:
    explicit RoomChange(const Settings& settings)
        : _turn(toMatrix(readTurn(settings))),
          _translation(readComponents(settings, "translation", 3)),
          _scale(settings.number("scale"))
    {
    }

    /// Component i of the turned vector whose component k is at(k).
    template <class At>
    double turned(std::size_t i, At at) const
    {
        return _turn[i * 3] * at(0) + _turn[i * 3 + 1] * at(1) + _turn[i * 3 + 2] * at(2);
    }
    double translation(std::size_t i) const { return _translation[i]; }
    double scale() const { return _scale; }

private:
    RotationMatrix _turn;
    std::vector<double> _translation; // in the new room's unit
    double _scale;
};

/// Positions.
template <class E>
class AlignFormula : public Stateless {
public:
    explicit AlignFormula(const Settings& settings) : _change(settings) {}

    Outcome operator()(E& position, State&, double) const
    {
        const E before = position;
        const auto at = [&](std::size_t k) { return double(before[k]); };
        return changeComponents(position, [&](std::size_t i, double) {
            return _change.scale() * _change.turned(i, at) + _change.translation(i);
        });
    }

private:
    RoomChange _change;
};

template <>
class AlignFormula<Rotation> : public Stateless {
public:
    explicit AlignFormula(const Settings& settings) : _turn(readTurn(settings))
    {
        refuseIfGiven(settings, "translation", "positions and Matrix4");
        refuseIfGiven(settings, "scale", "positions and Matrix4");
    }

    Outcome operator()(Rotation& rotation, State&, double) const
    {
        rotation = (_turn * Quaternion(rotation)).toRotation();
        return Outcome::Sent;
    }

private:
    Quaternion _turn;
};

/// The columns of a matrix are directions, of which only the fourth, the position, is scaled and moved: what is rigid
/// stays rigid.
template <Matrix E>
class AlignFormula<E> : public Stateless {
public:
    explicit AlignFormula(const Settings& settings) : _change(settings)
    {
        if (E::order() == 4)
            return;
        refuseIfGiven(settings, "translation", "positions and Matrix4");
        refuseIfGiven(settings, "scale", "positions and Matrix4");
    }

    Outcome operator()(E& matrix, State&, double) const
    {
        constexpr std::size_t n = E::order();
        const E before = matrix;
        return changeComponents(matrix, [&](std::size_t at, double x) {
            const std::size_t i = at / n, j = at % n;
            if (i == 3)
                return x;
            const double turned = _change.turned(i, [&](std::size_t k) { return double(before[k * n + j]); });
            return j == 3 ? _change.scale() * turned + _change.translation(i) * double(before[15]) : turned;
        });
    }

private:
    RoomChange _change;
};

struct AlignFilter {
    template <class E>
    requires(isOneOf<E, Vec3<double>, Vec3<float>, Rotation> || Matrix<E>) using Formula = AlignFormula<E>;
};

} // namespace

Align::Align(Clock& clock) : FilterNode(clock, createFilterLane<AlignFilter>) {}

const NodeTypeEntry& Align::getEntry()
{
    static const RelayTable table(
        fittingTypes<AlignFilter>(), "Vec3f",
        {Setting::text("rotation", "0 0 0 1", "turn from the old room to the new one, as a quaternion x y z w",
                       "four numbers, not all of them 0, separated by blanks"),
         Setting::text("translation", "0 0 0", "where the old room's origin is in the new one, in the new room's unit",
                       "one number, or three, separated by blanks"),
         Setting::number("scale", "1", 1e-9, 1e9, "what lengths are multiplied by")});
    static const NodeTypeEntry entry{"Align", "turns, moves and scales values from one room's axes to another's",
                                     table.rows(), createOnSystemClock<Align>};
    return entry;
}

} // namespace Trovio::Nodes
