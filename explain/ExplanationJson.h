#pragma once

#include "trovio/Explanation.h"

#include <nlohmann/json_fwd.hpp>

namespace Explain {

/// {"verdict":…,"text":…,"details":{…}}; a detail that is a count has nothing behind the point.
nlohmann::ordered_json explanationJson(const Trovio::Explanation& explanation);
} // namespace Explain
