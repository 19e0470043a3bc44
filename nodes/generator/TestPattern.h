#pragma once

#include "trovio/Image.h"
#include "trovio/Settings.h"
#include <cstdint>

namespace Trovio::Nodes {

/// An image in which every mistake shows: red grows from left to right, green from top to bottom, blue with each
/// record, alpha falls from left to right; grey is what red would be.
/// A plain value.
class TestPattern {
public:
    /// The names of the formats, as choices of a setting.
    static constexpr const char* FormatChoices = "BGR|RGB|BGRA|RGBA|luminance|luminance-alpha|ARGB|ABGR|luminance-16";

    explicit TestPattern(const Settings& settings);

    /// Draws into image, whose memory is used again where it has the right size and format.
    void draw(std::uint64_t index, Image& image) const;

private:
    Image::Format _format;
    unsigned _width;  // pixels
    unsigned _height; // pixels
};

} // namespace Trovio::Nodes
