#include "scene/change/HandlerLabels.h"

#include "scene/parts/SceneParts.h"

namespace Scenes {

std::vector<std::vector<std::string>> handlerLabels(const SceneFiles& files)
{
    std::vector<std::vector<std::string>> labels;
    unsigned number = 0;
    for (const auto& file : files) {
        std::vector<std::string>& own = labels.emplace_back();
        for (const HandlerEntry& handler : file->_handlers) {
            const bool takes = takesLabel(handler._kind._value);
            number += takes ? 1 : 0;
            own.push_back(!takes ? "" : number == 1 ? "Context" : "Context" + std::to_string(number));
        }
    }
    return labels;
}
} // namespace Scenes
