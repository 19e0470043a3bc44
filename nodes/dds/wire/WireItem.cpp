#include "nodes/dds/wire/WireItem.h"

#include <cstring>

namespace Trovio::Nodes {

std::string WireItem<std::string>::refer(const std::string& element, Wire& wire)
{
    referTo(wire, reinterpret_cast<const std::uint8_t*>(element.data()), element.size());
    if (element.size() > MaxWireText)
        return "a text of " + std::to_string(element.size()) + " bytes; at most " + std::to_string(MaxWireText) +
               " are allowed";
    return {};
}

std::string WireItem<std::string>::read(const Wire& wire, std::string& element)
{
    // A new one: elements of arrays that are used again must not grow to the longest text that each ever held.
    element = std::string(reinterpret_cast<const char*>(wire._buffer), wire._length);
    return {};
}

std::string WireItem<Image>::refer(const Image& element, Wire& wire)
{
    wire.format = element.getFormat();
    wire.width = element.getWidth();
    wire.height = element.getHeight();
    referTo(wire.pixels, element.getData(), element.getDataSize());
    return {};
}

std::string WireItem<Image>::read(const Wire& wire, Image& element)
{
    const auto* format = Image::findFormat(wire.format);
    if (!format)
        return "an image of the unknown format " + std::to_string(wire.format);
    const std::uint64_t bytes = std::uint64_t(wire.width) * wire.height * format->_bytesPerPixel;
    // The sides first: with both in range the product cannot have wrapped.
    if (wire.width > Image::MaxSide || wire.height > Image::MaxSide || bytes != wire.pixels._length)
        return "an image of " + std::to_string(wire.width) + " x " + std::to_string(wire.height) + " pixels, format " +
               std::string(format->_name) + ", with " + std::to_string(wire.pixels._length) + " bytes";
    if (element.getFormat() != format->_format || element.getWidth() != wire.width ||
        element.getHeight() != wire.height)
        element = Image(format->_format, wire.width, wire.height);
    if (bytes > 0)
        std::memcpy(element.getData(), wire.pixels._buffer, bytes);
    return {};
}

} // namespace Trovio::Nodes
