#include "osg/LogLimit.h"

#include <algorithm>

namespace osg {

bool LogLimit::admit(int level, const LogPlace& place, double now)
{
    const unsigned rate = this->rate();
    if (rate == 0)
        return true;
    const Ostrel::LockGuard guard(_lock);
    Source& source = _sources[{place._module, place._file}];
    if (source._limiter.held() != 0) { // none before these have been told
        source._limiter.hold();
        source._level = std::min(level, source._level);
        return false;
    }
    if (source._limiter.admit(now, rate))
        return true;
    source._level = level;
    _anyHeld.store(true, std::memory_order_relaxed);
    return false;
}

std::vector<LogLimit::Held> LogLimit::takeHeld(double now)
{
    std::vector<Held> result;
    if (!_anyHeld.load(std::memory_order_relaxed))
        return result;
    const Ostrel::LockGuard guard(_lock);
    bool left = false;
    for (auto& [name, source] : _sources) {
        if (const std::uint64_t count = source._limiter.takeHeld(now))
            result.push_back({name.first, name.second, source._level, count});
        left = left || source._limiter.held() != 0;
    }
    _anyHeld.store(left, std::memory_order_relaxed);
    return result;
}

} // namespace osg
