#include "trovio/Image.h"

#include "trovio/Exception.h"
#include <algorithm>
#include <utility>

namespace Trovio {

namespace {

// number, name, bytes per pixel, then the bytes of red, green, blue and alpha
constexpr Image::FormatInfo formats[] = {
    {Image::None, "none", 0, -1, -1, -1, -1},
    {Image::BGR, "BGR", 3, 2, 1, 0, -1},
    {Image::RGB, "RGB", 3, 0, 1, 2, -1},
    {Image::BGRA, "BGRA", 4, 2, 1, 0, 3},
    {Image::RGBA, "RGBA", 4, 0, 1, 2, 3},
    {Image::LuminanceAlpha, "luminance and alpha", 2, 0, 0, 0, 1},
    {Image::ARGB, "ARGB", 4, 1, 2, 3, 0},
    {Image::ABGR, "ABGR", 4, 3, 2, 1, 0},
    {Image::Luminance, "luminance", 1, 0, 0, 0, -1},
    {Image::Luminance16, "16-bit luminance", 2, 1, 1, 1, -1},
    {Image::Depth, "depth", 4, -1, -1, -1, -1},
};

struct Pixel {
    std::uint8_t _red, _green, _blue, _alpha;

    // The usual weights of the three colours, in 256ths; a grey stays exactly what it was.
    std::uint8_t luminance() const
    {
        return static_cast<std::uint8_t>((77U * _red + 150U * _green + 29U * _blue) >> 8U);
    }
};

Pixel readPixel(const Image::FormatInfo& format, const std::uint8_t* from)
{
    const std::uint8_t alpha = format._alpha < 0 ? std::uint8_t(255) : from[format._alpha];
    return {from[format._red], from[format._green], from[format._blue], alpha};
}

void writePixel(const Image::FormatInfo& format, const Pixel& pixel, std::uint8_t* to)
{
    if (format.isGrey()) {
        std::fill_n(to, format._bytesPerPixel, pixel.luminance());
    } else {
        to[format._red] = pixel._red;
        to[format._green] = pixel._green;
        to[format._blue] = pixel._blue;
    }
    if (format._alpha >= 0)
        to[format._alpha] = pixel._alpha;
}

std::size_t checkedSize(Image::Format format, unsigned width, unsigned height)
{
    const auto* info = Image::findFormat(format);
    if (!info)
        throw Exception("image format " + std::to_string(static_cast<int>(format)) + " is not known");
    const std::uint64_t bytes = std::uint64_t(width) * height * info->_bytesPerPixel;
    if (width > Image::MaxSide || height > Image::MaxSide || bytes > Image::MaxBytes)
        throw Exception("image of " + std::to_string(width) + " x " + std::to_string(height) +
                        " pixels is too large; allowed are " + std::to_string(Image::MaxSide) + " a side and " +
                        std::to_string(Image::MaxBytes) + " bytes");
    return bytes;
}

} // namespace

Image::Image(Format format, unsigned width, unsigned height)
    : _format(format), _width(width), _height(height), _data(checkedSize(format, width, height))
{
}

bool Image::convertFormat(Format format, Image& result) const
{
    const auto* from = findFormat(_format);
    const auto* to = findFormat(format);
    if (!to || !to->isConvertible() || (!empty() && !from->isConvertible()))
        return false;
    if (std::size_t(_width) * _height > MaxBytes / to->_bytesPerPixel)
        return false;
    Image converted(format, empty() ? 0 : _width, empty() ? 0 : _height);
    const std::uint8_t* source = _data.data();
    for (std::uint8_t* target = converted.getData(); target != converted.getData() + converted.getDataSize();
         target += to->_bytesPerPixel, source += from->_bytesPerPixel)
        writePixel(*to, readPixel(*from, source), target);
    result = std::move(converted);
    return true;
}

const Image::FormatInfo* Image::findFormat(int number)
{
    const auto* found = std::find_if(std::begin(formats), std::end(formats),
                                     [number](const FormatInfo& row) { return row._format == number; });
    return found == std::end(formats) ? nullptr : found;
}

} // namespace Trovio
