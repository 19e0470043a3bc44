#pragma once

#include "scene/SceneError.h"
#include "scene/toml/TomlValue.h"

#include <string>
#include <string_view>
#include <vector>

namespace Scenes {

/// "file:line:column", or the file alone for a position without a line. For messages.
std::string placeText(const std::string& file, Position position);

/// Gathers what is wrong with one scene file, so that its author sees everything at once. Threads: one.
class Problems {
public:
    explicit Problems(std::string_view file) : _file(file) {}

    void add(Position position, std::string_view text);

    /// Whether further problems are only counted, so that their texts need no work.
    bool full() const;

    /// A line for each problem, in the order of the file; empty if there are none.
    std::string text() const;

    /// Throws SceneError with that text, if there are any.
    void throwIfAny() const;

private:
    struct Problem {
        Position _position;
        std::string _text;
    };
    const std::string _file;
    std::vector<Problem> _problems;
    std::size_t _left = 0; // not kept: nobody reads more than a page
};
} // namespace Scenes
