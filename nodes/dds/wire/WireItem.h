#pragma once

#include "SlotSamples.h" // generated
#include "trovio/Values.h"
#include <string>

// Elements that travel as a structure of their own. Each WireItem<E> has
//   Wire                  that structure
//   refer(element, wire)  makes it refer to the element's memory, which must outlive it; why it cannot be sent
//   read(wire, element)   takes it over; what is wrong with it
// These texts are empty where nothing is wrong.
namespace Trovio::Nodes {

constexpr std::size_t MaxWireText = 1048576; // bytes, as in SlotSamples.idl

template <class E>
struct WireItem;

template <>
struct WireItem<std::string> {
    using Wire = Trovio_Wire_Text;
    static constexpr std::size_t MaxElements = 65536; // of a vector, as in SlotSamples.idl
    static std::string refer(const std::string& element, Wire& wire);
    static std::string read(const Wire& wire, std::string& element);
};

template <>
struct WireItem<Image> {
    using Wire = Trovio_Wire_Picture;
    static constexpr std::size_t MaxElements = 4096;
    static std::string refer(const Image& element, Wire& wire);
    static std::string read(const Wire& wire, Image& element);
};

/// Makes a sequence refer to memory that belongs to somebody else.
template <class Sequence, class Component>
void referTo(Sequence& sequence, const Component* components, std::size_t count)
{
    sequence._buffer = const_cast<Component*>(components); // the writer only reads
    sequence._length = sequence._maximum = static_cast<std::uint32_t>(count);
    sequence._release = false;
}

} // namespace Trovio::Nodes
