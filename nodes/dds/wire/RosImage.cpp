#include "nodes/dds/wire/RosImage.h"

#include "nodes/dds/wire/WireItem.h"
#include <algorithm>
#include <bit>
#include <cstring>

namespace Trovio::Nodes {

namespace {

struct Encoding {
    Image::Format _format;
    const char* _name;
    unsigned _bytesPerNumber; // whose order matters where it is more than one
};

constexpr Encoding encodings[] = {{Image::RGB, "rgb8", 1},        {Image::BGR, "bgr8", 1},
                                  {Image::RGBA, "rgba8", 1},      {Image::BGRA, "bgra8", 1},
                                  {Image::Luminance, "mono8", 1}, {Image::Luminance16, "mono16", 2},
                                  {Image::Depth, "32FC1", 4}};

std::string names()
{
    std::string list;
    for (const Encoding& encoding : encodings)
        list += (list.empty() ? "" : ", ") + std::string(encoding._name);
    return list;
}

} // namespace

std::string referImage(const Image& image, sensor_msgs_msg_dds__Image_& message)
{
    static_assert(std::endian::native == std::endian::little, "messages say that 16-bit pixels are little-endian");
    const auto* found = std::find_if(std::begin(encodings), std::end(encodings),
                                     [&](const Encoding& encoding) { return encoding._format == image.getFormat(); });
    if (found == std::end(encodings))
        return "an image of format " + std::string(Image::findFormat(image.getFormat())->_name) +
               ", which has no encoding; those that have are " + names();
    static char noFrame[] = "";
    message.header.frame_id = noFrame;
    message.height = image.getHeight();
    message.width = image.getWidth();
    message.encoding = const_cast<char*>(found->_name); // the writer only reads
    message.is_bigendian = 0;
    message.step = image.getWidth() * Image::findFormat(image.getFormat())->_bytesPerPixel;
    referTo(message.data, image.getData(), image.getDataSize());
    return {};
}

std::string readImage(const sensor_msgs_msg_dds__Image_& message, Image& image)
{
    const std::string_view name = message.encoding ? message.encoding : "";
    const auto* found = std::find_if(std::begin(encodings), std::end(encodings),
                                     [&](const Encoding& encoding) { return encoding._name == name; });
    if (found == std::end(encodings))
        return "an image of encoding '" + std::string(name.substr(0, 40)) + "', which is none of " + names();
    if (found->_bytesPerNumber > 1 && message.is_bigendian)
        return "an image whose numbers have their high byte first";
    const std::uint64_t row = std::uint64_t(message.width) * Image::findFormat(found->_format)->_bytesPerPixel;
    // The sides first: with both in range the products cannot have wrapped.
    if (message.width > Image::MaxSide || message.height > Image::MaxSide || message.step < row ||
        std::uint64_t(message.step) * message.height != message.data._length)
        return "an image of " + std::to_string(message.width) + " x " + std::to_string(message.height) +
               " pixels, encoding " + found->_name + ", rows of " + std::to_string(message.step) + " bytes, with " +
               std::to_string(message.data._length) + " bytes";
    if (image.getFormat() != found->_format || image.getWidth() != message.width || image.getHeight() != message.height)
        image = Image(found->_format, message.width, message.height);
    for (std::uint32_t y = 0; y < message.height && row > 0; ++y)
        std::memcpy(image.getData() + y * row, message.data._buffer + std::size_t(y) * message.step, row);
    return {};
}

} // namespace Trovio::Nodes
