#pragma once

#include "monitor/codec/ImageWire.h"
#include "trovio/Components.h"

namespace Monitor {

/// How the values of type T stand in a message: put() and get(), and the fewest bytes that one takes.
template <class T>
struct Wire;

/// What a component becomes. A rotation travels as the quaternion that others have, which has doubles.
template <class T>
struct WireComponent {
    using Type = typename Trovio::Components<T>::Component;
};
template <>
struct WireComponent<Trovio::Rotation> {
    using Type = double;
};
static_assert(sizeof(bool) == 1 && sizeof(long) == 8, "bool and int64 of a message are bool and long here");

template <Trovio::Numeric T>
struct Wire<T> {
    using Components = Trovio::Components<T>;
    using Component = typename WireComponent<T>::Type;
    static constexpr std::size_t leastBytes = Components::Count * sizeof(Component);
    /// Whether a message holds the same bytes as memory. Not so of bool: not every byte is one.
    static constexpr bool isCopied = std::is_same_v<Component, typename Components::Component> &&
                                     !std::is_same_v<T, bool> && std::is_trivially_copyable_v<T> &&
                                     sizeof(T) == leastBytes;

    static void put(CdrWriter& out, const T& value, const Trovio::Time&)
    {
        if constexpr (isCopied)
            out.putRun<Component>(&value, Components::Count);
        else
            for (std::size_t i = 0; i < Components::Count; ++i)
                out.put(static_cast<Component>(Components::get(value, i)));
    }

    static void get(CdrReader& in, T& value)
    {
        for (std::size_t i = 0; i < Components::Count; ++i) {
            if constexpr (std::is_same_v<Component, bool>)
                value = in.get<std::uint8_t>() != 0;
            else
                Components::set(value, i, static_cast<typename Components::Component>(in.get<Component>()));
        }
    }
};

template <>
struct Wire<std::string> {
    static constexpr std::size_t leastBytes = sizeof(std::uint32_t);
    static void put(CdrWriter& out, const std::string& value, const Trovio::Time&) { out.putText(value); }
    static void get(CdrReader& in, std::string& value) { value = in.getText(); }
};

template <>
struct Wire<Trovio::Image> : ImageWire {
};

/// A count and the elements.
template <class E>
struct Wire<std::vector<E>> {
    static void put(CdrWriter& out, const std::vector<E>& values, const Trovio::Time& stamp)
    {
        out.putCount(values.size());
        if constexpr (isCopied<E>())
            out.putRun<typename Wire<E>::Component>(values.data(), values.size() * Trovio::Components<E>::Count);
        else
            for (const E& value : values)
                Wire<E>::put(out, value, stamp);
    }

    static void get(CdrReader& in, std::vector<E>& values)
    {
        values.resize(in.getCount(Wire<E>::leastBytes));
        if constexpr (isCopied<E>())
            in.getRun<typename Wire<E>::Component>(values.data(), values.size() * Trovio::Components<E>::Count);
        else
            for (std::size_t i = 0; i < values.size() && !in.hasFailed(); ++i) {
                E value{};
                Wire<E>::get(in, value);
                values[i] = std::move(value);
            }
    }

private:
    template <class Element>
    static constexpr bool isCopied()
    {
        if constexpr (Trovio::Numeric<Element>)
            return Wire<Element>::isCopied;
        else
            return false;
    }
};

/// A null handle is written as an empty value. What is read is a handle of its own.
template <class T>
struct Wire<Trovio::SmartPtr<T>> {
    static void put(CdrWriter& out, const Trovio::SmartPtr<T>& value, const Trovio::Time& stamp)
    {
        static const T none{};
        Wire<T>::put(out, value ? *value : none, stamp);
    }

    static void get(CdrReader& in, Trovio::SmartPtr<T>& value)
    {
        value = {};
        Wire<T>::get(in, *value);
    }
};

} // namespace Monitor
