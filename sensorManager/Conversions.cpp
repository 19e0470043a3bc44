#include "sensorManager/Conversions.h"

#include <optional>

namespace Ostrel::Conversions {

namespace {

/// The scene's pixel format for an image that it can take as it is.
std::optional<std::uint32_t> pixelFormat(Trovio::Image::Format format)
{
    switch (format) {
    case Trovio::Image::BGR:
        return osg::Image::Bgr;
    case Trovio::Image::RGB:
        return osg::Image::Rgb;
    case Trovio::Image::BGRA:
        return osg::Image::Bgra;
    case Trovio::Image::RGBA:
        return osg::Image::Rgba;
    case Trovio::Image::Luminance:
        return osg::Image::Luminance;
    default:
        return std::nullopt;
    }
}

void refill(const Trovio::Image& from, std::uint32_t format, osg::Image& to)
{
    to.set(format, static_cast<std::int32_t>(from.getWidth()), static_cast<std::int32_t>(from.getHeight()), 1, 1, 1,
           0.0, from.getData(), osg::Image::UnsignedByte, true, 1);
}

} // namespace

bool convert(const Trovio::Image& from, osg::ImagePtr& to)
{
    if (const auto direct = pixelFormat(from.getFormat())) {
        refill(from, *direct, *to);
        return true;
    }
    Trovio::Image converted;
    const bool isConverted = from.convertFormat(Trovio::Image::RGB, converted);
    refill(converted, osg::Image::Rgb, *to);
    return isConverted;
}

} // namespace Ostrel::Conversions
