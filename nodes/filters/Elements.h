#pragma once

#include "trovio/Components.h"
#include "trovio/SlotTypes.h"
#include <cmath>
#include <limits>

namespace Trovio::Nodes {

/// What a slot value type is made of: itself, or the elements of its array.
template <class T>
struct ElementOf {
    using Type = T;
};
template <class E>
struct ElementOf<SharedVector<E>> {
    using Type = E;
};

template <class E, class... Others>
constexpr bool isOneOf = (std::is_same_v<E, Others> || ...);

template <class E>
concept Scalar = isOneOf<E, double, float, long>;

template <class E>
concept Vector = isOneOf<E, Vec2<double>, Vec2<float>, Vec3<double>, Vec3<float>, Vec4<double>, Vec4<float>>;

template <class E>
concept Matrix = isOneOf<E, Matrix3<double>, Matrix3<float>, Matrix4<double>, Matrix4<float>>;

/// Types whose components are quantities, each of which means something on its own.
template <class E>
concept Measure = Scalar<E> || Vector<E> || isOneOf<E, Color, ColorRGBA>;

/// Types that no filter takes.
template <class E>
concept Unfiltered = isOneOf<E, bool, Image, SharedImage, std::string, Time>;

/// Whether each slot value type is of one of these kinds, or a rotation: a type that none of them names would silently
/// have no filter.
constexpr bool everySlotTypeIsSorted()
{
    bool all = true;
    forEachSlotType([&all]<class T>(TypeTag<T>) {
        using E = typename ElementOf<T>::Type;
        all = all && (Measure<E> || Matrix<E> || Unfiltered<E> || std::is_same_v<E, Rotation>);
    });
    return all;
}
static_assert(everySlotTypeIsSorted(), "a slot value type is missing among the kinds above");

/// Sets a component to a number, rounded where it is a whole one. False, and nothing is set, if it does not fit.
template <class E>
bool setNumber(E& element, std::size_t i, double number)
{
    using Component = typename Components<E>::Component;
    using Limits = std::numeric_limits<Component>;
    constexpr bool isWhole = std::is_integral_v<Component>;
    // The upper limit of 64-bit whole numbers is no double; the next power of two, twice the highest bit, is.
    constexpr Component half = Limits::max() / 2;
    constexpr double max = isWhole ? 2.0 * static_cast<double>(half + 1) : static_cast<double>(Limits::max());
    if (isWhole ? !(std::abs(number) < max) : !(std::abs(number) <= max))
        return false;
    Components<E>::set(element, i, static_cast<Component>(isWhole ? std::round(number) : number));
    return true;
}

} // namespace Trovio::Nodes
