#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace Scenes {

/// One filter in the text of a conversion, "Axes unit=cm": views into that text, and where in it they begin.
struct ConversionPart {
    std::string_view _node; // empty where the filter is missing
    std::size_t _nodeAt;
    std::string_view _settings; // with what blanks stand behind them; may be empty
    std::size_t _settingsAt;    // as _nodeAt where there are none
};

/// The filters of a conversion, which bars outside quotes part. At least one.
std::vector<ConversionPart> conversionParts(std::string_view text);
} // namespace Scenes
