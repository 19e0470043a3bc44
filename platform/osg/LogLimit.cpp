#include "osg/LogLimit.h"

#include <algorithm>

namespace osg {

namespace {
constexpr double period = 1; // second
} // namespace

bool LogLimit::admit(int level, const LogPlace& place, double now)
{
    const unsigned rate = this->rate();
    if (rate == 0)
        return true;
    const Ostrel::LockGuard guard(_lock);
    Source& source = _sources[{place._module, place._file}];
    // Not before what was held back has been told.
    if (source._held == 0 && (source._written == 0 || now - source._start >= period)) {
        source._start = now;
        source._written = 0;
    }
    if (source._held == 0 && source._written < rate) {
        ++source._written;
        return true;
    }
    source._level = source._held == 0 ? level : std::min(level, source._level);
    ++source._held;
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
        if (source._held == 0)
            continue;
        if (now - source._start < period) {
            left = true;
            continue;
        }
        result.push_back({name.first, name.second, source._level, std::exchange(source._held, 0)});
    }
    _anyHeld.store(left, std::memory_order_relaxed);
    return result;
}

} // namespace osg
