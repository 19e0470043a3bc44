#pragma once

#include "nodes/dds/wire/FiniteNumbers.h"
#include "nodes/dds/wire/WireItem.h"
#include "nodes/dds/wire/WireTypes.h"
#include "trovio/Components.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

// How slot values become the value part of a sample and are read back, once for each kind of element. Every WireKind<E>
// writes and reads one element (the sample's value itself) and many (a sequence).
//   refer…  makes the sample refer to the memory of the value, or of this object, which must outlive the sample;
//           why it cannot be sent
//   lend…   makes the sample refer to the memory of the value, for the library to write into
//   read…   takes over what the sample holds; what is wrong with it
// These texts are empty where nothing is wrong.
namespace Trovio::Nodes {

/// Numbers, vectors, matrices, rotations, times: runs of components in memory and on the wire alike.
template <class E>
class WireKind {
public:
    using Component = typename Components<E>::Component;
    static constexpr std::size_t Count = Components<E>::Count;
    static_assert(sizeof(E) == Count * sizeof(Component) && std::is_trivially_copyable_v<E>,
                  "elements of this type are not copied to the wire as they lie in memory");

    template <class Value>
    std::string referOne(const E& element, Value& value)
    {
        static_assert(sizeof(Value) == sizeof(E), "SlotSamples.idl gives this type another size");
        std::memcpy(&value, &element, sizeof(E));
        return {};
    }

    template <class Sequence>
    std::string referMany(const std::vector<E>& elements, Sequence& sequence)
    {
        if (elements.size() > maxBytes / sizeof(E))
            return std::to_string(elements.size()) + " elements, which take over " + std::to_string(maxBytes) +
                   " bytes";
        referTo(sequence, reinterpret_cast<const Component*>(elements.data()), elements.size() * Count);
        return {};
    }

    template <class Value>
    static std::string readOne(const Value& value, bool finite, E& element)
    {
        std::memcpy(static_cast<void*>(&element), &value, sizeof(E));
        return finite ? findNonFinite(reinterpret_cast<const Component*>(&value), Count) : std::string();
    }

    template <class Sequence>
    static std::string readMany(const Sequence& sequence, bool finite, std::vector<E>& elements)
    {
        if (sequence._length % Count != 0)
            return std::to_string(sequence._length) + " numbers, which is no multiple of " + std::to_string(Count);
        if (std::string problem = finite ? findNonFinite(sequence._buffer, sequence._length) : std::string();
            !problem.empty())
            return problem;
        const bool isLent = sequence._buffer == reinterpret_cast<const Component*>(elements.data());
        elements.resize(sequence._length / Count);
        if (!isLent && !elements.empty())
            std::memcpy(static_cast<void*>(elements.data()), sequence._buffer, elements.size() * sizeof(E));
        return {};
    }

    /// Lends the memory of the elements to the sequence, for so many bytes of them at most.
    template <class Sequence>
    static void lendMany(std::vector<E>& elements, std::size_t bytes, Sequence& sequence)
    {
        // One more than fit: a sequence whose length is no multiple must not be cut to one.
        elements.resize(bytes / sizeof(E) + 1);
        referTo(sequence, reinterpret_cast<const Component*>(elements.data()), elements.size() * Count);
    }

private:
    static constexpr std::size_t maxBytes = std::size_t(1) << 30; // their number fits into 32 bits

    static std::string findNonFinite(const Component* components, std::size_t count)
    {
        if constexpr (std::is_floating_point_v<Component>) {
            if (areFinite(components, count))
                return {};
            const Component* end = components + count;
            const auto* found = std::find_if_not(components, end, [](Component c) { return std::isfinite(c); });
            if (found != end)
                return "number " + std::to_string(found - components + 1) + " is " + std::to_string(*found);
        }
        return {};
    }
};

/// A vector of truth values has no run of them in memory.
template <>
class WireKind<bool> {
public:
    std::string referOne(bool element, bool& value)
    {
        value = element;
        return {};
    }

    template <class Sequence>
    std::string referMany(const std::vector<bool>& elements, Sequence& sequence)
    {
        _copy = std::make_unique<bool[]>(elements.size());
        std::copy(elements.begin(), elements.end(), _copy.get());
        referTo(sequence, _copy.get(), elements.size());
        return {};
    }

    static std::string readOne(bool value, bool, bool& element)
    {
        element = value;
        return {};
    }

    template <class Sequence>
    static std::string readMany(const Sequence& sequence, bool, std::vector<bool>& elements)
    {
        elements.assign(sequence._buffer, sequence._buffer + sequence._length);
        return {};
    }

private:
    std::unique_ptr<bool[]> _copy;
};

/// Elements that are structures of their own on the wire.
template <class E>
class WireStructures {
public:
    using Wire = typename WireItem<E>::Wire;

    std::string referOne(const E& element, Wire& value) { return WireItem<E>::refer(element, value); }

    template <class Sequence>
    std::string referMany(const std::vector<E>& elements, Sequence& sequence)
    {
        if (elements.size() > WireItem<E>::MaxElements)
            return std::to_string(elements.size()) + " elements; at most " + std::to_string(WireItem<E>::MaxElements) +
                   " are allowed";
        _items.resize(elements.size());
        std::string problem;
        for (std::size_t i = 0; i < elements.size() && problem.empty(); ++i)
            problem = WireItem<E>::refer(elements[i], _items[i]);
        referTo(sequence, _items.data(), _items.size());
        return problem;
    }

    static std::string readOne(const Wire& value, bool, E& element) { return WireItem<E>::read(value, element); }

    template <class Sequence>
    static std::string readMany(const Sequence& sequence, bool, std::vector<E>& elements)
    {
        elements.resize(sequence._length);
        for (std::uint32_t i = 0; i < sequence._length; ++i) {
            if (std::string problem = WireItem<E>::read(sequence._buffer[i], elements[i]); !problem.empty())
                return "element " + std::to_string(i + 1) + " is " + problem;
        }
        return {};
    }

private:
    std::vector<Wire> _items;
};

template <>
class WireKind<std::string> : public WireStructures<std::string> {
};
template <>
class WireKind<Image> : public WireStructures<Image> {
};

/// A whole slot value: one element, or the object that a handle shares. A null handle travels as an empty one.
template <class T>
class WireValue {
public:
    using Sample = typename WireType<T>::Sample;
    static const dds_topic_descriptor_t& descriptor() { return WireType<T>::descriptor(); }

    std::string refer(const T& value, Sample& sample) { return _kind.referOne(value, sample.value); }

    /// With finite, numbers that are infinite or none are refused.
    static std::string read(const Sample& sample, bool finite, T& value)
    {
        return WireKind<T>::readOne(sample.value, finite, value);
    }

private:
    WireKind<T> _kind;
};

template <class Object>
class WireValue<SmartPtr<Object>> {
    using Element = typename WireType<SmartPtr<Object>>::Element;

public:
    using Sample = typename WireType<SmartPtr<Object>>::Sample;
    static const dds_topic_descriptor_t& descriptor() { return WireType<SmartPtr<Object>>::descriptor(); }

    std::string refer(const SmartPtr<Object>& value, Sample& sample)
    {
        static const Object none{};
        if constexpr (isImage)
            return _kind.referOne(value ? *value : none, sample.value);
        else
            return _kind.referMany(value ? *value : none, sample.value);
    }

    /// Lends the object's memory to a sample that takes so many bytes on the wire, so that there is nothing left to
    /// copy after the library has put it there. The object is not to be used before it is read.
    static void lend(Object& object, std::size_t bytes, Sample& sample) requires requires
    {
        WireKind<Element>::lendMany(object, bytes, sample.value);
    }
    {
        WireKind<Element>::lendMany(object, bytes, sample.value);
    }

    static std::string read(const Sample& sample, bool finite, SmartPtr<Object>& value)
    {
        if constexpr (isImage)
            return WireKind<Element>::readOne(sample.value, finite, *value);
        else
            return WireKind<Element>::readMany(sample.value, finite, *value);
    }

private:
    static constexpr bool isImage = std::is_same_v<Object, Image>;
    WireKind<Element> _kind;
};

} // namespace Trovio::Nodes
