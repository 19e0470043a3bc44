#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace Trovio {

/// A picture: rows of pixels without gaps between them, of a format that is told by its number.
/// Ownership: owns its pixels; copies are deep.
/// Threads:   a plain value.
class Image {
public:
    enum Format : int {
        None = 0,
        BGR = 4,
        RGB = 5,
        BGRA = 6,
        RGBA = 7,
        LuminanceAlpha = 8,
        ARGB = 9,
        ABGR = 10,
        Luminance = 16,
        Luminance16 = 17, // 16 bits, low byte first
        Depth = 20,       // metres as a 32-bit float
    };

    /// What is known of a format.
    struct FormatInfo {
        Format _format;
        std::string_view _name;
        unsigned _bytesPerPixel;
        // The byte of a pixel where each channel stands; -1 where it has none. All three colours at one place: grey.
        int _red, _green, _blue, _alpha;
        bool isConvertible() const { return _red >= 0; }
        bool isGrey() const { return _red == _green; }
    };

    static constexpr unsigned MaxSide = 65536;
    static constexpr std::size_t MaxBytes = std::size_t(1) << 30;

    /// An empty image of no format.
    Image() = default;

    /// An image with all bytes zero. Throws Exception for an unknown format, a side over MaxSide or more than MaxBytes.
    Image(Format format, unsigned width, unsigned height);

    Image(const Image& other);
    Image(Image&&) noexcept = default;
    Image& operator=(const Image& other);
    Image& operator=(Image&&) noexcept = default;
    ~Image() = default;

    Format getFormat() const { return _format; }
    unsigned getWidth() const { return _width; }
    unsigned getHeight() const { return _height; }
    const std::uint8_t* getData() const { return _data.data(); }
    std::uint8_t* getData() { return _data.data(); }
    std::size_t getDataSize() const { return _data.size(); }
    bool empty() const { return _data.empty(); }
    bool operator==(const Image&) const = default;

    /// Writes this image in another format into result, which may be this image itself. Alpha is opaque where this
    /// format has none. An image without pixels yields one without pixels. False, and result stays as it was, where
    /// either format is not convertible or the result would have more than MaxBytes.
    bool convertFormat(Format format, Image& result) const;

    /// Null for a number that is no format.
    static const FormatInfo* findFormat(int number);

private:
    /// Leaves the bytes as they come, for pictures that are written whole: zeros would cost as much as the writing.
    struct Unwritten : std::allocator<std::uint8_t> {
        using std::allocator<std::uint8_t>::allocator;
        template <class>
        struct rebind {
            using other = Unwritten;
        };
        void construct(std::uint8_t* byte) { ::new (byte) std::uint8_t; }
    };
    using Bytes = std::vector<std::uint8_t, Unwritten>;

    Image(Format format, unsigned width, unsigned height, Bytes data)
        : _format(format), _width(width), _height(height), _data(std::move(data))
    {
    }

    Format _format = None;
    unsigned _width = 0;  // pixels
    unsigned _height = 0; // pixels
    Bytes _data;
};

} // namespace Trovio
