#pragma once

#include "nodes/filters/ElementWise.h"
#include "nodes/filters/convert/AxisOrder.h"
#include "nodes/filters/convert/EulerOrder.h"
#include "nodes/relay/RotationMatrix.h"

// A formula makes an element of another type of one that was found usable:
//   explicit Formula(const Settings&);                     throws InvalidFieldException
//   struct State;                                          what it remembers; its default: nothing
//   Outcome operator()(const A&, B&, State&) const;
namespace Trovio::Nodes {

template <class E>
concept Angles = isOneOf<E, Vec3<double>, Vec3<float>>;

template <class E>
concept Turn = isOneOf<E, Matrix3<double>, Matrix3<float>>;

/// Component by component; a Rotation gets length 1.
template <class A, class B>
requires(Components<A>::Count == Components<B>::Count) class ConvertNumbers : public Stateless {
public:
    explicit ConvertNumbers(const Settings&) {}

    Outcome operator()(const A& from, B& to, State&) const
    {
        if constexpr (std::is_same_v<A, B>) {
            to = from; // every bit of whole numbers, too
        } else {
            for (std::size_t i = 0; i < Components<A>::Count; ++i)
                if (!setNumber(to, i, static_cast<double>(Components<A>::get(from, i))))
                    return Outcome::BadResult;
        }
        if constexpr (std::is_same_v<B, Rotation> && !std::is_same_v<A, Rotation>) {
            if (Quaternion(to).length() == 0.0)
                return Outcome::BadValue;
            to = Quaternion(to).toRotation();
        }
        return Outcome::Sent;
    }
};

/// True from the threshold on, and then until the number is below it by more than the hysteresis.
template <class A>
class ConvertToBool {
public:
    struct State {
        bool _value = false;
    };
    explicit ConvertToBool(const Settings& settings)
        : _threshold(settings.number("threshold")), _release(_threshold - settings.number("hysteresis"))
    {
    }

    Outcome operator()(const A& from, bool& to, State& state) const
    {
        const auto number = static_cast<double>(Components<A>::get(from, 0));
        state._value = number >= (state._value ? _release : _threshold);
        to = state._value;
        return Outcome::Sent;
    }

private:
    double _threshold;
    double _release; // where it ends
};

/// How angles are written: which component holds which, in what unit, and the order of the turns.
class AngleForm {
public:
    explicit AngleForm(const Settings& settings);

    Quaternion read(const std::array<double, 3>& components) const;
    std::array<double, 3> write(const Quaternion& rotation) const;

private:
    EulerOrder _order;
    AxisOrder _components;
    double _unit; // radians
};

template <Angles A>
class ConvertAngles : public Stateless {
public:
    explicit ConvertAngles(const Settings& settings) : _form(settings) {}

    Outcome operator()(const A& from, Rotation& to, State&) const
    {
        to = _form.read({double(from[0]), double(from[1]), double(from[2])}).toRotation();
        return isUsable(to) ? Outcome::Sent : Outcome::BadResult;
    }
    Outcome operator()(const Rotation& from, A& to, State&) const
    {
        const auto components = _form.write(Quaternion(from).normalized());
        for (std::size_t i = 0; i < 3; ++i)
            setNumber(to, i, components[i]);
        return Outcome::Sent;
    }

private:
    AngleForm _form;
};

template <Turn M>
class ConvertTurn : public Stateless {
public:
    explicit ConvertTurn(const Settings&) {}

    Outcome operator()(const M& from, Rotation& to, State&) const
    {
        RotationMatrix matrix;
        std::copy_n(from.data(), matrix.size(), matrix.begin());
        if (!isRotation(matrix))
            return Outcome::BadValue;
        to = toQuaternion(matrix).toRotation();
        return Outcome::Sent;
    }
    Outcome operator()(const Rotation& from, M& to, State&) const
    {
        const RotationMatrix matrix = toMatrix(Quaternion(from).normalized());
        for (std::size_t i = 0; i < matrix.size(); ++i)
            setNumber(to, i, matrix[i]);
        return Outcome::Sent;
    }
};

/// Which formula makes a B of an A; nothing where none does.
template <class A, class B>
struct ConvertFormula;

template <class A, class B>
requires(Components<A>::Count == Components<B>::Count && !std::is_same_v<B, bool>) struct ConvertFormula<A, B> {
    using Type = ConvertNumbers<A, B>;
};
template <class A>
requires(Components<A>::Count == 1) struct ConvertFormula<A, bool> {
    using Type = ConvertToBool<A>;
};
template <Angles A>
struct ConvertFormula<A, Rotation> {
    using Type = ConvertAngles<A>;
};
template <Angles A>
struct ConvertFormula<Rotation, A> {
    using Type = ConvertAngles<A>;
};
template <Turn M>
struct ConvertFormula<M, Rotation> {
    using Type = ConvertTurn<M>;
};
template <Turn M>
struct ConvertFormula<Rotation, M> {
    using Type = ConvertTurn<M>;
};

} // namespace Trovio::Nodes
