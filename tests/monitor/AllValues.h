#pragma once

#include "monitor/codec/Encode.h"
#include "tests/nodes/SampleValues.h"
#include "trovio/SlotTypes.h"

#include <limits>

namespace Monitor {

/// A value of which every component is that number.
template <class T>
T filled(typename Trovio::Components<T>::Component number)
{
    T value{};
    for (std::size_t i = 0; i < Trovio::Components<T>::Count; ++i)
        Trovio::Components<T>::set(value, i, number);
    return value;
}

/// The ends of the range, and what is special between them.
template <class T>
void addSpecialValues(std::vector<T>& values)
{
    if constexpr (Trovio::Numeric<T>) {
        using Limits = std::numeric_limits<typename Trovio::Components<T>::Component>;
        values.push_back(filled<T>(Limits::lowest()));
        values.push_back(filled<T>(Limits::max()));
        if constexpr (Limits::has_quiet_NaN)
            for (const auto number : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                                      Limits::denorm_min(), Limits::min() / -3, -Limits::min() * 0})
                values.push_back(filled<T>(number));
    }
}

inline void addSpecialValues(std::vector<std::string>& values)
{
    values.insert(values.end(), {"", std::string("\0", 1), "\x1b[2J\x7f", "a\"\\b\u2028", "\xff\xc0 no text"});
}

inline Trovio::Image imageOf(Trovio::Image::Format format, unsigned width, unsigned height)
{
    Trovio::Image image(format, width, height);
    for (std::size_t i = 0; i < image.getDataSize(); ++i)
        image.getData()[i] = static_cast<std::uint8_t>(31 * i + 200);
    return image;
}

inline std::vector<Trovio::Image> imagesOfAllFormats()
{
    std::vector<Trovio::Image> images;
    for (int number = 0; number < 32; ++number)
        if (Trovio::Image::findFormat(number))
            images.push_back(imageOf(static_cast<Trovio::Image::Format>(number), 3, 2));
    return images;
}

inline void addSpecialValues(std::vector<Trovio::SharedImage>& values)
{
    for (const Trovio::Image& image : imagesOfAllFormats())
        *values.emplace_back() = image;
    *values.emplace_back() = imageOf(Trovio::Image::RGB, 0, 4);
}

inline void addSpecialValues(std::vector<Trovio::SharedVector<Trovio::Image>>& values)
{
    *values.emplace_back() = imagesOfAllFormats();
}

template <class E>
void addSpecialValues(std::vector<Trovio::SharedVector<E>>& values)
{
    std::vector<E> elements;
    addSpecialValues(elements);
    *values.emplace_back() = elements;
}

/// Values of a slot type that are hard to carry.
template <class T>
std::vector<T> allValues()
{
    std::vector<T> values = Trovio::Nodes::sampleValues<T>();
    addSpecialValues(values);
    return values;
}

template <class T>
Bytes encoded(const T& value)
{
    Bytes bytes;
    bytes.reserve(64); // or the compiler takes what it copies on growing for an overrun
    encode(Trovio::Data<T>(value, Trovio::Time(1.5)), bytes);
    return bytes;
}

} // namespace Monitor
