#pragma once

#include "trovio/routing/Pattern.h"

#include <optional>
#include <string>

namespace Host {

/// Picks sensors by a text that occurs in their name or label, in small or capital letters; `*` in it stands for any
/// text. A value type.
class SensorFilter {
public:
    static constexpr std::size_t MaxLength = 200; // bytes

    /// Everything passes an empty one. What is longer than MaxLength is cut.
    explicit SensorFilter(std::string text = {});

    const std::string& text() const { return _text; }
    bool passes(const std::string& name, const std::string& label) const;

private:
    std::string _text;
    std::optional<Trovio::Pattern> _pattern; // nothing where all passes
};
} // namespace Host
