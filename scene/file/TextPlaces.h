#pragma once

#include "scene/file/SceneFile.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Scenes {

/// Where in a scene file a part of one of its texts stands. Lives as long as the file's text.
class TextPlaces {
public:
    explicit TextPlaces(std::string_view source);

    /// The place of the byte with that number. Where escapes stand before it in the file, the place where the text
    /// begins.
    Position placeIn(const LocatedText& text, std::size_t offset) const;

private:
    std::string_view sourceAt(Position position) const;

    const std::string_view _source;
    std::vector<std::size_t> _lines; // where each begins
};
} // namespace Scenes
