#pragma once

#include "ostrel/FieldTypes.h"
#include "trovio/Values.h"
#include <algorithm>
#include <utility>

// How values cross between the scene's fields and the slots: one overload for each kind of element, and the multiple
// value once over them.
namespace Ostrel::Conversions {

template <class T>
concept FlatValue = requires(T value)
{
    T::size();
    value.data();
};
template <class T>
concept SquareValue = FlatValue<T> && requires
{
    T::order();
};

/// Booleans and numbers. A 64-bit integer loses its high half on the way in.
template <class To, class From>
requires std::is_arithmetic_v<To> && std::is_arithmetic_v<From>
void convert(From from, To& to)
{
    to = static_cast<To>(from);
}

inline void convert(const std::string& from, std::string& to)
{
    to = from;
}

inline void convert(const Trovio::Time& from, double& to)
{
    to = from.getSeconds();
}

inline void convert(double from, Trovio::Time& to)
{
    to = Trovio::Time(from);
}

/// Vectors and colours, component by component.
template <FlatValue From, FlatValue To>
void convert(const From& from, To& to)
{
    static_assert(From::size() == To::size());
    std::copy_n(from.data(), From::size(), to.data());
}

/// Matrices: the scene stores them column by column, the slots carry them row by row.
template <SquareValue From, SquareValue To>
void convert(const From& from, To& to)
{
    static_assert(From::order() == To::order());
    constexpr std::size_t n = From::order();
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j)
            to.data()[i * n + j] = from.data()[j * n + i];
}

inline void convert(const Trovio::Rotation& from, Rotation& to)
{
    to.setQuaternion(from[0], from[1], from[2], from[3]);
}

inline void convert(const Rotation& from, Trovio::Rotation& to)
{
    const auto& q = from.quaternion();
    to = Trovio::Rotation(q[0], q[1], q[2], q[3]);
}

/// Refills the image that the field holds. A format that the scene does not know becomes RGB on the way. False for one
/// that cannot; the field's image is empty then.
bool convert(const Trovio::Image& from, osg::ImagePtr& to);

/// A single value into its field.
template <int Code, class Element, class Value>
void toField(Value& from, SingleField<Code, Element>& field)
{
    convert(from, field.value());
}

/// An image that could not be converted; null if all could.
template <int Code>
const Trovio::Image* toField(Trovio::SharedImage& from, SingleField<Code, osg::ImagePtr>& field)
{
    const Trovio::Image& image = *from;
    return convert(image, field.value()) ? nullptr : &image;
}

/// A multiple value into its field, which gets the vector's length. A null handle acquires a vector first, and brings
/// whatever that one held last.
template <int Code, class Element, class SlotElement>
void toField(Trovio::SharedVector<SlotElement>& from, MultiField<Code, Element>& field)
{
    const std::vector<SlotElement>& values = *from;
    if constexpr (std::is_same_v<Element, SlotElement>) {
        field.values() = values;
    } else {
        field.values().resize(values.size());
        auto target = field.values().begin();
        for (const SlotElement& value : values)
            convert(value, *target++);
    }
}

/// Images, each into the one at the same position. One that could not be converted; null if all could.
template <int Code>
const Trovio::Image* toField(Trovio::SharedVector<Trovio::Image>& from, MultiField<Code, osg::ImagePtr>& field)
{
    const std::vector<Trovio::Image>& images = *from;
    const Trovio::Image* refused = nullptr;
    field.values().resize(images.size());
    auto target = field.values().begin();
    for (const Trovio::Image& image : images)
        if (!convert(image, *target++))
            refused = &image;
    return refused;
}

/// A single value out of its field.
template <int Code, class Element, class SlotElement>
void toSlot(const SingleField<Code, Element>& field, SlotElement& to)
{
    convert(field.value(), to);
}

/// A multiple value out of its field, into a vector of its own from the pool: readers may keep the one sent before.
template <int Code, class Element, class SlotElement>
void toSlot(const MultiField<Code, Element>& field, Trovio::SharedVector<SlotElement>& to)
{
    to = {};
    to.acquire();
    std::vector<SlotElement>& values = *to;
    values.clear();
    values.reserve(field.values().size());
    for (const auto& value : field.values()) {
        SlotElement element{};
        convert(value, element);
        values.push_back(std::move(element));
    }
}

} // namespace Ostrel::Conversions
