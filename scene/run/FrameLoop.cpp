#include "scene/run/FrameLoop.h"

#include <algorithm>
#include <cmath>

namespace Scenes {

void FrameLoop::run(const std::function<bool(double now)>& frame)
{
    const double start = _clock.steady();
    double origin = 0;      // seconds behind the start at which the rate has come
    std::uint64_t slot = 0; // number of the period since; its frame is due at start + origin + slot / rate
    while (_frames < _limits._frames) {
        const double due = origin + static_cast<double>(slot) / _rate;
        if (!_clock.waitUntil(start + std::min(due, _limits._seconds)) || due >= _limits._seconds)
            return;
        ++_frames;
        if (!frame(_clock.now()))
            return;
        if (_nextRate != _rate) {
            origin = due;
            slot = 0;
            _rate = _nextRate;
        }
        const double passed = std::floor((_clock.steady() - start - origin) * _rate);
        const auto late = passed > static_cast<double>(slot) ? static_cast<std::uint64_t>(passed) - slot : 0;
        _skipped += late > 0 ? late - 1 : 0;
        slot += std::max<std::uint64_t>(late, 1);
    }
}
} // namespace Scenes
