#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace osg {

/// Pixels with their format. Owns its memory; copies are deep. Threads: one at a time.
/// Invariant: data() holds exactly what the sizes ask for, or nothing when no memory was allocated.
class Image {
public:
    /// Numbers as OpenGL has them.
    enum PixelFormat : std::uint32_t {
        Alpha = 0x1906,
        Rgb = 0x1907,
        Rgba = 0x1908,
        Luminance = 0x1909,
        LuminanceAlpha = 0x190A,
        Bgr = 0x80E0,
        Bgra = 0x80E1,
    };
    enum DataType : std::uint32_t {
        UnsignedByte = 0x1401,
        UnsignedShort = 0x1403,
        UnsignedInt = 0x1405,
        Float = 0x1406
    };

    /// The most that one image may take, in bytes.
    static constexpr std::uint64_t maxBytes = std::uint64_t{1} << 30;

    /// Empty: no pixels, format RGB.
    Image() = default;

    /// Replaces format and pixels. `data` (null for zeros; never this image's own) is copied and holds every mipmap
    /// level, frame and side one behind the other; with `allocate` false only the sizes are taken. Width and height may
    /// be 0, the other counts are at least 1. `frameDelay` is in seconds. A refused call logs a warning that names the
    /// values, changes nothing and returns false.
    bool set(std::uint32_t pixelFormat, std::int32_t width, std::int32_t height, std::int32_t depth = 1,
             std::int32_t mipmapCount = 1, std::int32_t frameCount = 1, double frameDelay = 0.0,
             const std::uint8_t* data = nullptr, std::uint32_t dataType = UnsignedByte, bool allocate = true,
             std::int32_t sideCount = 1);

    std::uint32_t pixelFormat() const { return _shape._pixelFormat; }
    std::uint32_t dataType() const { return _shape._dataType; }
    std::int32_t width() const { return _shape._width; }
    std::int32_t height() const { return _shape._height; }
    std::int32_t depth() const { return _shape._depth; }
    std::int32_t mipmapCount() const { return _shape._mipmapCount; }
    std::int32_t frameCount() const { return _shape._frameCount; }
    std::int32_t sideCount() const { return _shape._sideCount; }
    double frameDelay() const { return _frameDelay; }

    /// Null when size() is 0.
    const std::uint8_t* data() const { return _data.empty() ? nullptr : _data.data(); }
    std::uint8_t* data() { return _data.empty() ? nullptr : _data.data(); }
    /// Bytes at data().
    std::size_t size() const { return _data.size(); }
    bool empty() const { return _data.empty(); }

    /// Everything that the number of bytes follows from.
    struct Shape {
        std::uint32_t _pixelFormat = Rgb;
        std::uint32_t _dataType = UnsignedByte;
        std::int32_t _width = 0;
        std::int32_t _height = 0;
        std::int32_t _depth = 1;
        std::int32_t _mipmapCount = 1;
        std::int32_t _frameCount = 1;
        std::int32_t _sideCount = 1;
    };

private:
    Shape _shape;
    double _frameDelay = 0.0;
    std::vector<std::uint8_t> _data;
};

/// A counted reference to an image. Never null: a new handle refers to a new, empty image; a copied one shares it.
class ImagePtr {
public:
    ImagePtr() : _image(std::make_shared<Image>()) {}
    // Copies only: a handle that was moved from would be null.
    ImagePtr(const ImagePtr&) = default;
    ImagePtr& operator=(const ImagePtr&) = default;

    Image& operator*() const { return *_image; }
    Image* operator->() const { return _image.get(); }
    Image* get() const { return _image.get(); }
    long useCount() const { return _image.use_count(); }

private:
    std::shared_ptr<Image> _image;
};

} // namespace osg
