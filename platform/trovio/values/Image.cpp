#include "trovio/Image.h"

#include "trovio/Exception.h"
#include "trovio/values/PixelBytes.h"
#include <algorithm>
#include <tuple>
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

void writeGrey(const Image::FormatInfo& format, const Pixel& pixel, std::uint8_t* to)
{
    std::fill_n(to, format._bytesPerPixel, pixel.luminance());
    if (format._alpha >= 0)
        to[format._alpha] = pixel._alpha;
}

/// For all but colour to grey: a grey is the same in every channel.
PixelBytes bytesBetween(const Image::FormatInfo& from, const Image::FormatInfo& to)
{
    PixelBytes bytes{from._bytesPerPixel, to._bytesPerPixel, {}};
    bytes._from.fill(from._red);
    for (const auto& [target, source] : {std::pair(to._green, from._green), std::pair(to._blue, from._blue),
                                         std::pair(to._red, from._red), std::pair(to._alpha, from._alpha)})
        if (target >= 0)
            bytes._from[static_cast<std::size_t>(target)] = source; // no alpha is PixelBytes::Opaque
    return bytes;
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
    std::fill(_data.begin(), _data.end(), std::uint8_t(0));
}

Image::Image(const Image& other) : Image(other._format, other._width, other._height, Bytes(other._data.size()))
{
    std::copy(other._data.begin(), other._data.end(), _data.begin());
}

Image& Image::operator=(const Image& other)
{
    if (this == &other)
        return *this;
    _width = _height = 0; // where there is no memory, empty it stays
    _data.clear();        // so that growing moves no bytes
    _data.resize(other._data.size());
    std::copy(other._data.begin(), other._data.end(), _data.begin());
    std::tie(_format, _width, _height) = std::tie(other._format, other._width, other._height);
    return *this;
}

bool Image::convertFormat(Format format, Image& result) const
{
    const auto* from = findFormat(_format);
    const auto* to = findFormat(format);
    if (!to || !to->isConvertible() || (!empty() && !from->isConvertible()))
        return false;
    if (std::size_t(_width) * _height > MaxBytes / to->_bytesPerPixel)
        return false;
    const std::size_t pixels = empty() ? 0 : std::size_t(_width) * _height;
    Image converted(format, empty() ? 0 : _width, empty() ? 0 : _height, Bytes(pixels * to->_bytesPerPixel));
    const std::uint8_t* source = _data.data();
    std::uint8_t* target = converted.getData();
    if (!to->isGrey() || from->isGrey())
        bytesBetween(*from, *to).move(source, target, pixels);
    else
        for (std::size_t i = 0; i < pixels; ++i)
            writeGrey(*to, readPixel(*from, source + i * from->_bytesPerPixel), target + i * to->_bytesPerPixel);
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
