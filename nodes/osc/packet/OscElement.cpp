#include "nodes/osc/packet/OscElement.h"

#include <array>

namespace Trovio::Nodes {

namespace {

struct ImageShape {
    std::int32_t _width, _height, _format;
};

/// Null unless the numbers describe an image of exactly that many bytes.
const Image::FormatInfo* findShape(const ImageShape& shape, std::size_t bytes)
{
    const auto fits = [](std::int32_t side) { return side >= 0 && side <= std::int32_t(Image::MaxSide); };
    const auto* format = Image::findFormat(shape._format);
    if (!format || !fits(shape._width) || !fits(shape._height))
        return nullptr;
    const std::uint64_t pixels = std::uint64_t(shape._width) * static_cast<std::uint64_t>(shape._height);
    return pixels * format->_bytesPerPixel == bytes ? format : nullptr;
}

} // namespace

bool OscElement<std::string>::read(OscArguments& arguments, std::string& element)
{
    const auto argument = arguments.next();
    if (!argument || (argument->_tag != 's' && argument->_tag != 'S' && argument->_tag != 'b'))
        return false;
    element.assign(argument->asText());
    return true;
}

void OscElement<std::string>::write(OscWriter& writer, const std::string& element)
{
    if (element.find('\0') == std::string::npos)
        writer.addText(element);
    else
        writer.addBlob(Bytes(reinterpret_cast<const std::uint8_t*>(element.data()), element.size()));
}

bool OscElement<Image>::read(OscArguments& arguments, Image& element)
{
    std::array<std::int32_t, 3> numbers{};
    for (std::int32_t& number : numbers)
        if (!readOscNumber(arguments, number))
            return false;
    const auto pixels = arguments.next();
    if (!pixels || pixels->_tag != 'b')
        return false;
    const ImageShape shape{numbers[0], numbers[1], numbers[2]};
    const auto* format = findShape(shape, pixels->_bytes.size());
    if (!format)
        return false;
    const auto width = static_cast<unsigned>(shape._width);
    const auto height = static_cast<unsigned>(shape._height);
    if (element.getFormat() != format->_format || element.getWidth() != width || element.getHeight() != height)
        element = Image(format->_format, width, height);
    std::copy(pixels->_bytes.begin(), pixels->_bytes.end(), element.getData());
    return true;
}

void OscElement<Image>::write(OscWriter& writer, const Image& element)
{
    writer.addInt32(static_cast<std::int32_t>(element.getWidth()));
    writer.addInt32(static_cast<std::int32_t>(element.getHeight()));
    writer.addInt32(static_cast<std::int32_t>(element.getFormat()));
    writer.addBlob(Bytes(element.getData(), element.getDataSize()));
}

} // namespace Trovio::Nodes
