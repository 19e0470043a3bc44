#pragma once

#include "nodes/osc/packet/OscArguments.h"
#include "nodes/osc/packet/OscWriter.h"
#include "trovio/Components.h"
#include <algorithm>
#include <cmath>
#include <limits>

// How one element of each type is written in a message, and what it is read from. What write() makes, read() takes back
// without any difference.
//
// Each OscElement<E> has
//   signature()               the type tags that it is written with
//   read(arguments, element)  false if the next arguments do not fit; the element is then undefined
//   write(writer, element)    appends to the message
namespace Trovio::Nodes {

/// Whole numbers from others: cut towards zero, held at the ends of the range; not-a-number is 0.
template <class To, class From>
To convertOscNumber(From number)
{
    if constexpr (std::is_same_v<To, bool>) {
        return number != From(0);
    } else if constexpr (std::is_integral_v<To> && std::is_floating_point_v<From>) {
        // The largest To is no value of From, but the power of two behind it is; the smallest To is its negative.
        constexpr auto limit = -static_cast<From>(std::numeric_limits<To>::min());
        if (std::isnan(number))
            return 0;
        if (number >= limit)
            return std::numeric_limits<To>::max();
        return number < -limit ? std::numeric_limits<To>::min() : static_cast<To>(number);
    } else {
        return static_cast<To>(number);
    }
}

template <class To>
bool readOscNumber(OscArguments& arguments, To& number)
{
    const auto argument = arguments.next();
    switch (argument ? argument->_tag : '\0') {
    case 'i':
        number = convertOscNumber<To>(argument->asInt32());
        return true;
    case 'h':
        number = convertOscNumber<To>(argument->asInt64());
        return true;
    case 'f':
        number = convertOscNumber<To>(argument->asFloat());
        return true;
    case 'd':
        number = convertOscNumber<To>(argument->asDouble());
        return true;
    default:
        return false;
    }
}

/// Numbers, vectors, matrices, rotations: the components in order.
template <class E>
struct OscElement {
    using Access = Components<E>;
    using Component = typename Access::Component;

    static std::string signature()
    {
        const char tag = std::is_same_v<Component, float> ? 'f' : std::is_same_v<Component, double> ? 'd' : 'h';
        return std::string(Access::Count, tag);
    }

    static bool read(OscArguments& arguments, E& element)
    {
        for (std::size_t i = 0; i < Access::Count; ++i) {
            Component component{};
            if (!readOscNumber(arguments, component))
                return false;
            Access::set(element, i, component);
        }
        return true;
    }

    static void write(OscWriter& writer, const E& element)
    {
        for (std::size_t i = 0; i < Access::Count; ++i)
            writer.addNumber(Access::get(element, i));
    }
};

/// Colours in one argument of four bytes are taken, too; their alpha is left out where there is no place for it.
template <class E>
struct OscColour : OscElement<FixedArray<float, E::size()>> {
    static bool read(OscArguments& arguments, E& colour)
    {
        if (arguments.peek() != 'r')
            return OscElement<FixedArray<float, E::size()>>::read(arguments, colour);
        const auto packed = arguments.next();
        for (std::size_t i = 0; packed && i < E::size(); ++i)
            colour[i] = static_cast<float>(packed->_bytes[i]) / 255.0F;
        return packed.has_value();
    }
};

template <>
struct OscElement<Color> : OscColour<Color> {
};
template <>
struct OscElement<ColorRGBA> : OscColour<ColorRGBA> {
};

template <>
struct OscElement<bool> {
    static std::string signature() { return "T"; }

    static bool read(OscArguments& arguments, bool& element)
    {
        switch (arguments.peek()) {
        case 'T':
        case 'I': // an impulse: it happens now
        case 'F':
        case 'N':
            element = arguments.peek() == 'T' || arguments.peek() == 'I';
            return arguments.next().has_value();
        default:
            return readOscNumber(arguments, element);
        }
    }

    static void write(OscWriter& writer, bool element) { writer.addBool(element); }
};

/// As seconds since 1970: a time tag holds only some of the dates that a Time can.
template <>
struct OscElement<Time> {
    static std::string signature() { return "d"; }

    static bool read(OscArguments& arguments, Time& element)
    {
        double seconds = 0.0;
        if (arguments.peek() == 't')
            seconds =
                fromTimeTag(readBigEndian64(arguments.next()->_bytes.data()), Time::getCurrentTime()).getSeconds();
        else if (!readOscNumber(arguments, seconds))
            return false;
        element = Time(seconds);
        return true;
    }

    static void write(OscWriter& writer, const Time& element) { writer.addNumber(element.getSeconds()); }
};

/// A text with a zero byte in it travels as a blob, since OSC texts end there.
template <>
struct OscElement<std::string> {
    static std::string signature() { return "s"; }
    static bool read(OscArguments& arguments, std::string& element);
    static void write(OscWriter& writer, const std::string& element);
};

/// Width, height, number of the format, and the pixels as a blob of exactly the size that follows from these.
template <>
struct OscElement<Image> {
    static std::string signature() { return "iiib"; }
    static bool read(OscArguments& arguments, Image& element);
    static void write(OscWriter& writer, const Image& element);
};

} // namespace Trovio::Nodes
