#pragma once

#include "scene/SceneError.h"
#include "scene/change/Difference.h"
#include "trovio/settings/SettingsParser.h"

#include <string>
#include <vector>

namespace Scenes {

/// A change by hand that names what is not there: a label or a route.
class NoSuchPart : public SceneError {
public:
    using SceneError::SceneError;
};

/// A route that is there already.
class PartInTheWay : public SceneError {
public:
    using SceneError::SceneError;
};

// Changes by hand, as if a line of the scene file had been written otherwise. Each returns the files with that change,
// and throws SceneError, in words that name what is allowed, where it cannot be made. Any thread; nothing is done to
// what runs.

/// Gives settings of the node with that label other values. Those that are not named stay. The label is that of the
/// root ("Context/OneEuro"), or the end of it behind a slash; of a filter on a route, too. Throws NoSuchPart where no
/// node has the label.
SceneFiles withSettings(const SceneFiles& files, const std::string& label,
                        const std::vector<Trovio::SettingText>& settings);

/// A route more, with what is done with the values on it, which may be empty: in the handler where both ends stand in
/// one, else in the root. The ends are labels of the root. Throws PartInTheWay where it is there.
SceneFiles withRoute(const SceneFiles& files, const std::string& from, const std::string& to,
                     const std::string& conversion = {});

/// That route less, which may have been in the file. The ends are those of the root, or the ends of these behind a
/// slash. Throws NoSuchPart where there is none.
SceneFiles withoutRoute(const SceneFiles& files, const std::string& from, const std::string& to);
} // namespace Scenes
