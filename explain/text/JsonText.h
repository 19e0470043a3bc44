#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace Explain {

/// The one way in which JSON leaves the program: UTF-8 whatever is in the texts (bytes that are none become U+FFFD),
/// and a code for every character that a terminal might obey. On one line unless indented.
std::string jsonText(const nlohmann::json& value, int indent = -1);
std::string jsonText(const nlohmann::ordered_json& value, int indent = -1);
} // namespace Explain
