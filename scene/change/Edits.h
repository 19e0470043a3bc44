#pragma once

#include "scene/SceneError.h"
#include "scene/change/Difference.h"

#include <string>

namespace Scenes {

/// A change by hand that names what is not there: a label or a route.
class NoSuchPart : public SceneError {
public:
    using SceneError::SceneError;
};

// Changes by hand, as if a line of the scene file had been written otherwise. Each returns the files with that change,
// and throws SceneError, in words that name what is allowed, where it cannot be made. Labels are as the root sees them
// ("Context/OneEuro"), or without the first part where only one handler has them. Any thread; nothing is done to what
// runs.

/// Gives settings of the node with that label other values: "cutoff=2 beta='0.1'". Those that are not named stay.
/// Throws NoSuchPart where no node has the label.
SceneFiles withSettings(const SceneFiles& files, const std::string& label, const std::string& settings);

/// A route more: in the handler where both ends stand in one, else in the root.
SceneFiles withRoute(const SceneFiles& files, const std::string& from, const std::string& to);

/// That route less, which may have been in the file. Throws NoSuchPart where there is none.
SceneFiles withoutRoute(const SceneFiles& files, const std::string& from, const std::string& to);
} // namespace Scenes
