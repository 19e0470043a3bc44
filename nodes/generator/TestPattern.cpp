#include "nodes/generator/TestPattern.h"

#include <algorithm>

namespace Trovio::Nodes {

namespace {

// In the order of FormatChoices.
constexpr Image::Format formats[] = {Image::BGR,  Image::RGB,       Image::BGRA,
                                     Image::RGBA, Image::Luminance, Image::LuminanceAlpha,
                                     Image::ARGB, Image::ABGR,      Image::Luminance16};

std::uint8_t rampAt(unsigned position, unsigned length)
{
    return static_cast<std::uint8_t>(length < 2 ? 0 : 255U * position / (length - 1));
}

} // namespace

TestPattern::TestPattern(const Settings& settings)
    : _format(formats[settings.choice("format")]),
      _width(static_cast<unsigned>(settings.integer("width"))),
      _height(static_cast<unsigned>(settings.integer("height")))
{
}

void TestPattern::draw(std::uint64_t index, Image& image) const
{
    if (image.getFormat() != _format || image.getWidth() != _width || image.getHeight() != _height)
        image = Image(_format, _width, _height);
    const Image::FormatInfo& format = *Image::findFormat(_format);
    std::uint8_t* pixel = image.getData();
    for (unsigned y = 0; y < _height; ++y) {
        for (unsigned x = 0; x < _width; ++x, pixel += format._bytesPerPixel) {
            const std::uint8_t red = rampAt(x, _width);
            std::fill_n(pixel, format._bytesPerPixel, red); // all there is of a grey one
            if (!format.isGrey()) {
                pixel[format._green] = rampAt(y, _height);
                pixel[format._blue] = static_cast<std::uint8_t>(index);
            }
            if (format._alpha >= 0)
                pixel[format._alpha] = static_cast<std::uint8_t>(255 - red);
        }
    }
}

} // namespace Trovio::Nodes
