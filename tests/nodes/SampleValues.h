#pragma once

#include "trovio/Components.h"
#include <limits>

namespace Trovio::Nodes {

/// Element number i of a series in which every component differs from its neighbours and uses all of its digits.
template <class E>
E sampleElement(std::size_t i)
{
    E element{};
    for (std::size_t k = 0; k < Components<E>::Count; ++k) {
        using Component = typename Components<E>::Component;
        const double number =
            (static_cast<double>(i) + 1.0) / 3.0 * (k % 2 == 0 ? 1.0 : -1e-7) + static_cast<double>(k);
        Components<E>::set(element, k, static_cast<Component>(number));
    }
    return element;
}

template <>
inline long sampleElement<long>(std::size_t i)
{
    return i % 2 == 0 ? std::numeric_limits<long>::min() + static_cast<long>(i) : 9'007'199'254'740'993L;
}

template <>
inline std::string sampleElement<std::string>(std::size_t i)
{
    return std::string(i, 'x') + (i % 4 == 3 ? std::string("zero\0byte", 9) : "ä\n");
}

template <>
inline Image sampleElement<Image>(std::size_t i)
{
    const Image::Format formats[] = {Image::RGB, Image::Luminance, Image::BGRA, Image::None};
    const auto side = static_cast<unsigned>(i);
    Image image(formats[i % 4], side, side + 1);
    for (std::size_t k = 0; k < image.getDataSize(); ++k)
        image.getData()[k] = static_cast<std::uint8_t>(7 * k + i);
    return image;
}

template <class E>
void addSample(std::vector<SharedVector<E>>& samples, std::size_t length)
{
    auto& elements = *samples.emplace_back();
    elements.clear(); // it may come used from its pool
    for (std::size_t i = 0; i < length; ++i)
        elements.push_back(sampleElement<E>(i));
}

inline void addSample(std::vector<SharedImage>& samples, std::size_t i)
{
    *samples.emplace_back() = sampleElement<Image>(i);
}

template <class T>
void addSample(std::vector<T>& samples, std::size_t i)
{
    samples.push_back(sampleElement<T>(i));
}

/// Values of a slot type with which a transport can be tried: the default, and some that are hard to carry.
template <class T>
std::vector<T> sampleValues()
{
    std::vector<T> samples(1);
    for (const std::size_t i : {3U, 0U, 1U, 2U, 5U})
        addSample(samples, i);
    return samples;
}

/// Whether two slot values are the same to whoever looks at them; null handles are as good as empty ones.
template <class T>
bool isSame(const T& left, const T& right)
{
    return left == right;
}

template <class T>
bool isSame(const SmartPtr<T>& left, const SmartPtr<T>& right)
{
    static const T none{};
    return (left ? *left : none) == (right ? *right : none);
}

} // namespace Trovio::Nodes
