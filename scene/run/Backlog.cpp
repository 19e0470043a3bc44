#include "scene/run/Backlog.h"

#include "explain/text/Escape.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

void Backlog::update(const Session& session)
{
    for (const SensorWatch* watch : session.watches())
        for (const Trovio::Slot* slot : watch->slots())
            if (const auto* in = dynamic_cast<const Trovio::BasicInSlot*>(slot)) {
                Seen& seen = _seen[in];
                const std::uint64_t stored = in->getCounts().stored;
                seen._maxWaiting = std::max(seen._maxWaiting, stored - seen._stored);
                seen._stored = stored;
            }
}

std::string Backlog::cure(const Session& session, const std::string& label) const
{
    for (const SensorWatch* watch : session.watches()) {
        const std::string& own = watch->sensor().getLabel();
        if (own.empty() || (label != own && !label.ends_with("/" + own)))
            continue;
        std::uint64_t maxWaiting = 0;
        for (const auto& [slot, seen] : _seen)
            if (std::ranges::find(watch->slots(), slot) != watch->slots().end() && slot->getCounts().overwritten != 0)
                maxWaiting = std::max(maxWaiting, seen._maxWaiting);
        if (maxWaiting > watch->sensor().getBufferSize())
            return "; buffer = " + std::to_string(maxWaiting) + " at sensor " + inQuotes(watch->sensor().getName()) +
                   " would have held them";
    }
    return {};
}
} // namespace Scenes
