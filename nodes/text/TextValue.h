#pragma once

#include "nodes/text/TextNumber.h"
#include "trovio/Components.h"
#include <span>
#include <vector>

// How slot values that consist of numbers are written as numbers in a row. What write() makes, read() takes back
// without any difference.
namespace Trovio::Nodes {

inline std::string countOfNumbers(std::size_t count)
{
    return count == 1 ? "a number" : std::to_string(count) + " numbers";
}

inline std::string numbersOfEach(std::size_t width)
{
    return width == 1 ? "numbers" : "numbers, " + std::to_string(width) + " for each element";
}

/// Each TextValue<T> has
///   expected()             what it is read from, in words
///   Width                  numbers of one element
///   read(numbers, value)   false if the numbers do not make a value; it is then undefined
///   write(value, numbers)  appends; false if a component is not finite
template <class T>
struct TextValue {
    using Access = Components<T>;
    static constexpr std::size_t Width = Access::Count;

    static std::string expected() { return countOfNumbers(Width); }

    static bool read(std::span<const TextNumber> numbers, T& value)
    {
        if (numbers.size() != Width)
            return false;
        for (std::size_t i = 0; i < Width; ++i) {
            const auto component = fromTextNumber<typename Access::Component>(numbers[i]);
            if (!component)
                return false;
            Access::set(value, i, *component);
        }
        return true;
    }

    static bool write(const T& value, std::vector<TextNumber>& numbers)
    {
        for (std::size_t i = 0; i < Width; ++i) {
            const auto number = toTextNumber(Access::get(value, i));
            if (!number)
                return false;
            numbers.push_back(*number);
        }
        return true;
    }
};

template <class E>
struct TextValue<SharedVector<E>> {
    static constexpr std::size_t Width = TextValue<E>::Width;

    static std::string expected() { return numbersOfEach(Width); }

    static bool read(std::span<const TextNumber> numbers, SharedVector<E>& value)
    {
        if (numbers.size() % Width != 0)
            return false;
        value = {};
        value.acquire();
        value->resize(numbers.size() / Width);
        for (std::size_t i = 0; i < value->size(); ++i) {
            E element{};
            if (!TextValue<E>::read(numbers.subspan(i * Width, Width), element))
                return false;
            (*value)[i] = element;
        }
        return true;
    }

    static bool write(const SharedVector<E>& value, std::vector<TextNumber>& numbers)
    {
        if (!value)
            return true;
        for (const auto& element : *value)
            if (!TextValue<E>::write(element, numbers))
                return false;
        return true;
    }
};

template <class T>
struct IsSharedVector : std::false_type {
};
template <class E>
struct IsSharedVector<SharedVector<E>> : std::true_type {
    using Element = E;
};

/// Slot value types that consist of numbers.
template <class T>
concept NumberValue = Numeric<T> ||(IsSharedVector<T>::value&& Numeric<typename IsSharedVector<T>::Element>);

/// Slot value types that texts carry: those, and a text itself.
template <class T>
concept TextSlotValue = NumberValue<T> || std::is_same_v<T, std::string>;

} // namespace Trovio::Nodes
