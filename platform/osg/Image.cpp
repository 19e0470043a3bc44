#include "osg/Image.h"

#include "osg/LogMessage.h"
#include "osg/LogRecord.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace osg {

namespace {

struct Size {
    std::uint32_t _number;
    std::uint64_t _size;
};

// Components of a pixel.
constexpr std::array<Size, 7> pixelFormats{{
    {Image::Alpha, 1},
    {Image::Rgb, 3},
    {Image::Rgba, 4},
    {Image::Luminance, 1},
    {Image::LuminanceAlpha, 2},
    {Image::Bgr, 3},
    {Image::Bgra, 4},
}};

// Bytes of a component.
constexpr std::array<Size, 4> dataTypes{{
    {Image::UnsignedByte, 1},
    {Image::UnsignedShort, 2},
    {Image::UnsignedInt, 4},
    {Image::Float, 4},
}};

template <std::size_t N>
std::uint64_t sizeOf(const std::array<Size, N>& table, std::uint32_t number)
{
    const auto row = std::find_if(table.begin(), table.end(), [number](const Size& s) { return s._number == number; });
    return row == table.end() ? 0 : row->_size;
}

/// The product, or one more than the limit when it is beyond the limit.
std::uint64_t limitedProduct(std::uint64_t a, std::uint64_t b)
{
    if (a == 0 || b == 0)
        return 0;
    return a > Image::maxBytes / b ? Image::maxBytes + 1 : a * b;
}

/// Pixels of all mipmap levels; each level halves every size that is more than 1.
std::uint64_t pixelsOf(const Image::Shape& shape)
{
    auto width = static_cast<std::uint64_t>(shape._width);
    auto height = static_cast<std::uint64_t>(shape._height);
    auto depth = static_cast<std::uint64_t>(shape._depth);
    std::uint64_t pixels = 0;
    for (std::int32_t level = 0; level < shape._mipmapCount && pixels <= Image::maxBytes; ++level) {
        pixels += limitedProduct(limitedProduct(width, height), depth);
        for (std::uint64_t* size : {&width, &height, &depth})
            *size = *size > 1 ? *size / 2 : *size;
    }
    return pixels;
}

constexpr std::int32_t maxMipmaps = 32; // more levels than the largest size has halves

bool countsAreValid(const Image::Shape& shape)
{
    return shape._width >= 0 && shape._height >= 0 && shape._depth >= 1 && shape._frameCount >= 1 &&
           shape._sideCount >= 1 && shape._mipmapCount >= 1 && shape._mipmapCount <= maxMipmaps;
}

/// Nothing when the shape is not allowed.
std::optional<std::uint64_t> bytesOf(const Image::Shape& shape)
{
    const std::uint64_t pixelBytes = sizeOf(pixelFormats, shape._pixelFormat) * sizeOf(dataTypes, shape._dataType);
    if (pixelBytes == 0 || !countsAreValid(shape))
        return std::nullopt;
    std::uint64_t bytes = limitedProduct(pixelsOf(shape), pixelBytes);
    bytes = limitedProduct(bytes, static_cast<std::uint64_t>(shape._frameCount));
    bytes = limitedProduct(bytes, static_cast<std::uint64_t>(shape._sideCount));
    if (bytes > Image::maxBytes)
        return std::nullopt;
    return bytes;
}

} // namespace

bool Image::set(std::uint32_t pixelFormat, std::int32_t width, std::int32_t height, std::int32_t depth,
                std::int32_t mipmapCount, std::int32_t frameCount, double frameDelay, const std::uint8_t* data,
                std::uint32_t dataType, bool allocate, std::int32_t sideCount)
{
    const Shape shape{pixelFormat, dataType, width, height, depth, mipmapCount, frameCount, sideCount};
    const auto bytes = bytesOf(shape);
    if (!bytes || !std::isfinite(frameDelay) || frameDelay < 0.0) {
        logLimited(
            LogWarning, {"osg", "osg/Image", __LINE__, __PRETTY_FUNCTION__},
            "Image not set: pixel format 0x%x, data type 0x%x, size %d x %d x %d, %d mipmaps, %d frames, %d sides, "
            "delay %g s; allowed are the formats and types of osg::Image, sizes from 0, a depth and counts from "
            "1, a delay from 0, and at most %llu bytes\n",
            pixelFormat, dataType, width, height, depth, mipmapCount, frameCount, sideCount, frameDelay,
            static_cast<unsigned long long>(maxBytes));
        return false;
    }
    const auto size = static_cast<std::size_t>(allocate ? *bytes : 0);
    if (data)
        _data.assign(data, data + size);
    else
        _data.assign(size, 0);
    _shape = shape;
    _frameDelay = frameDelay;
    return true;
}

} // namespace osg
