#pragma once

#include <nlohmann/json_fwd.hpp>

namespace Monitor {

/// The value of a message in JSON as the message has it, {"x":1,"y":2,"z":3} or {"data":0.5}, in the form that the host
/// writes: [1,2,3] or 0.5. What is no such message stays as it is. Of up to 16 levels, as readJson() has them.
nlohmann::json plainJson(const nlohmann::json& message);

} // namespace Monitor
