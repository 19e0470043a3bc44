#pragma once

#include "nodes/osc/packet/OscElement.h"
#include "trovio/Values.h"

namespace Trovio::Nodes {

/// How a whole slot value is written in a message, built on OscElement. read() takes the arguments of the value, all of
/// them for a vector, or refuses; others may be left.
template <class T>
struct OscValue {
    static std::string expected() { return OscElement<T>::signature(); }

    static bool read(OscArguments& arguments, T& value) { return OscElement<T>::read(arguments, value); }

    static void write(OscWriter& writer, const T& value) { OscElement<T>::write(writer, value); }
};

/// An image of no pixels stands for no image.
template <>
struct OscValue<SharedImage> {
    static std::string expected() { return OscElement<Image>::signature(); }

    static bool read(OscArguments& arguments, SharedImage& value)
    {
        value = {};
        value.acquire();
        return OscElement<Image>::read(arguments, *value);
    }

    static void write(OscWriter& writer, const SharedImage& value)
    {
        static const Image none;
        OscElement<Image>::write(writer, value ? *value : none);
    }
};

/// One element after another, as many as there are; none at all is an empty vector.
template <class E>
struct OscValue<SharedVector<E>> {
    static std::string expected() { return "(" + OscElement<E>::signature() + ")*"; }

    static bool read(OscArguments& arguments, SharedVector<E>& value)
    {
        value = {};
        value.acquire();
        std::vector<E>& elements = *value; // with what it held before, whose memory is used again
        std::size_t count = 0;
        for (; !arguments.atEnd(); ++count) {
            if (count == elements.size())
                elements.emplace_back();
            if (!readAt(arguments, elements, count))
                return false;
        }
        elements.resize(count);
        return true;
    }

    static void write(OscWriter& writer, const SharedVector<E>& value)
    {
        if (!value)
            return;
        for (const auto& element : *value)
            OscElement<E>::write(writer, element);
    }

private:
    static bool readAt(OscArguments& arguments, std::vector<E>& elements, std::size_t i)
    {
        if constexpr (std::is_same_v<E, bool>) {
            bool element = false;
            const bool fits = OscElement<bool>::read(arguments, element);
            elements[i] = element;
            return fits;
        } else {
            return OscElement<E>::read(arguments, elements[i]);
        }
    }
};

} // namespace Trovio::Nodes
