#include "host/run/SensorValues.h"

#include "host/show/Json.h"

#include <utility>

namespace Host {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto timeOfFrame = 1ms;   // that copying may take
constexpr auto freshness = 250ms;   // for which copies are given out again
constexpr auto patience = 1000ms;   // with the scene thread
constexpr std::size_t inOneGo = 16; // between looks at the clock
} // namespace

void SensorValues::endFrame(double now)
{
    if (!_isWanted.load(std::memory_order_acquire))
        return;
    for (const Time start = Clock::now(); _next < _watches.size() && Clock::now() - start < timeOfFrame;)
        for (std::size_t end = std::min(_next + inOneGo, _watches.size()); _next < end; ++_next) {
            const Scenes::SensorWatch& watch = *_watches[_next];
            _young[watch.title()] = {fieldText(watch.field()), {watch.changes(), watch.age(now)}};
        }
    if (_next < _watches.size())
        return;
    _next = 0;
    Copies old = std::exchange(_young, {}); // goes outside the lock
    {
        const Ostrel::LockGuard guard(_lock);
        _copies.swap(old);
        _made = Clock::now();
        _isWanted.store(false, std::memory_order_relaxed);
    }
    _news.notify_all();
}

void SensorValues::end()
{
    {
        const Ostrel::LockGuard guard(_lock);
        _isOver = true;
    }
    _news.notify_all();
}

bool SensorValues::isFresh() const
{
    return _made && Clock::now() - *_made < freshness;
}

std::optional<SensorValues::Copy> SensorValues::find(const std::string& title)
{
    const Ostrel::LockGuard guard(_lock);
    const Time latest = Clock::now() + patience;
    while (!isFresh() && !_isOver && Clock::now() >= _stuckUntil && Clock::now() < latest) {
        _isWanted.store(true, std::memory_order_release);
        _news.wait_until(_lock, latest);
    }
    if (!isFresh() && Clock::now() >= latest)
        _stuckUntil = Clock::now() + patience;
    const auto found = _copies.find(title);
    return found == _copies.end() || !isFresh() ? std::nullopt : std::optional(found->second);
}

std::string SensorValues::json(const std::string& title)
{
    const auto found = find(title);
    return found ? found->_json : "null";
}

Monitor::ChangeCounts SensorValues::changes(const std::string& title)
{
    const auto found = find(title);
    return found ? found->_changes : Monitor::ChangeCounts();
}
} // namespace Host
