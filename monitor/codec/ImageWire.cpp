#include "monitor/codec/ImageWire.h"

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "monitor/codec/RosTime.h"

#include <algorithm>
#include <ranges>

namespace Monitor {

using Trovio::Image;

namespace {

struct Encoding {
    Image::Format _format;
    std::string_view _name;
};

// Where ROS 2 has no name, one in its manner.
constexpr Encoding encodings[] = {
    {Image::None, ""},           {Image::BGR, "bgr8"},
    {Image::RGB, "rgb8"},        {Image::BGRA, "bgra8"},
    {Image::RGBA, "rgba8"},      {Image::ARGB, "argb8"},
    {Image::ABGR, "abgr8"},      {Image::LuminanceAlpha, "8UC2"},
    {Image::Luminance, "mono8"}, {Image::Luminance16, "mono16"},
    {Image::Depth, "32FC1"},
};

bool hasLongChannels(Image::Format format)
{
    return format == Image::Luminance16 || format == Image::Depth;
}

struct Header {
    std::uint32_t _height, _width;
    std::string_view _encoding;
    bool _isBigEndian;
    std::uint32_t _step; // bytes from row to row
};

Header getHeader(CdrReader& in)
{
    skipRosHeader(in);
    Header header{};
    header._height = in.get<std::uint32_t>();
    header._width = in.get<std::uint32_t>();
    header._encoding = in.getText();
    header._isBigEndian = in.get<std::uint8_t>() != 0;
    header._step = in.get<std::uint32_t>();
    return header;
}

std::string unknownEncoding(std::string_view name)
{
    std::vector<std::string_view> known;
    for (const Encoding& one : encodings)
        known.push_back(one._name.empty() ? "none at all" : one._name);
    return "the image's encoding " + Explain::inQuotes(name) + " is none of " + Explain::listed(known);
}

std::string sizeText(const Header& header)
{
    return std::to_string(header._width) + " x " + std::to_string(header._height) + " pixels of encoding " +
           Explain::inQuotes(header._encoding);
}

/// Empty where the pixels are what the header says.
std::string problemOf(const Header& header, const Encoding& encoding, std::size_t bytes)
{
    const std::uint64_t row = std::uint64_t(header._width) * Image::findFormat(encoding._format)->_bytesPerPixel;
    if (header._isBigEndian && hasLongChannels(encoding._format))
        return "the image of " + sizeText(header) + " has the high byte first (is_bigendian 1); only 0 is taken";
    if (header._width > Image::MaxSide || header._height > Image::MaxSide || row * header._height > Image::MaxBytes)
        return "the image of " + sizeText(header) + " is too large; allowed are " + std::to_string(Image::MaxSide) +
               " a side and " + std::to_string(Image::MaxBytes) + " bytes";
    if (header._step < row || std::uint64_t(header._step) * header._height != bytes)
        return "the image of " + sizeText(header) + " has " + std::to_string(bytes) + " bytes of pixels in rows of " +
               std::to_string(header._step) + "; a row takes at least " + std::to_string(row);
    return {};
}

} // namespace

void ImageWire::put(CdrWriter& out, const Image& image, const Trovio::Time& stamp)
{
    const auto* const encoding = std::ranges::find(encodings, image.getFormat(), &Encoding::_format);
    putRosHeader(out, stamp, "");
    out.put(image.getHeight());
    out.put(image.getWidth());
    out.putText(encoding->_name);
    out.put(std::uint8_t(0));
    out.put(image.getWidth() * Image::findFormat(image.getFormat())->_bytesPerPixel);
    out.putCount(image.getDataSize());
    out.putRun<std::uint8_t>(image.getData(), image.getDataSize());
}

void ImageWire::get(CdrReader& in, Image& image)
{
    const Header header = getHeader(in);
    const auto pixels = in.getBytes();
    if (in.hasFailed())
        return;
    const auto* const encoding = std::ranges::find(encodings, header._encoding, &Encoding::_name);
    if (encoding == std::end(encodings))
        return in.fail(unknownEncoding(header._encoding));
    if (std::string problem = problemOf(header, *encoding, pixels.size()); !problem.empty())
        return in.fail(std::move(problem));
    Image read(encoding->_format, header._width, header._height);
    const std::size_t row = header._height == 0 ? 0 : read.getDataSize() / header._height;
    for (std::size_t y = 0; row != 0 && y < header._height; ++y)
        std::memcpy(read.getData() + y * row, pixels.data() + y * header._step, row);
    image = std::move(read);
}

} // namespace Monitor
