#pragma once

#include "trovio/Values.h"
#include <concepts>
#include <type_traits>

namespace Trovio {

/// A value that is a fixed number of numbers: how nodes that do arithmetic see every such type alike.
/// Count components of type Component each; get() and set() take i in [0, Count).
template <class T>
struct Components;

template <class T>
requires std::is_arithmetic_v<T>
struct Components<T> {
    using Component = T;
    static constexpr std::size_t Count = 1;
    static T get(const T& value, std::size_t) { return value; }
    static void set(T& value, std::size_t, T component) { value = component; }
};

template <>
struct Components<Time> {
    using Component = double;
    static constexpr std::size_t Count = 1;
    static double get(const Time& value, std::size_t) { return value.getSeconds(); }
    static void set(Time& value, std::size_t, double component) { value = Time(component); }
};

template <class T>
requires requires(T value)
{
    typename T::Component;
    value.data();
}
struct Components<T> {
    using Component = typename T::Component;
    static constexpr std::size_t Count = T::size();
    static Component get(const T& value, std::size_t i) { return value[i]; }
    static void set(T& value, std::size_t i, Component component) { value[i] = component; }
};

/// True for every slot value type that has Components.
template <class T>
concept Numeric = requires
{
    Components<T>::Count;
};

} // namespace Trovio
