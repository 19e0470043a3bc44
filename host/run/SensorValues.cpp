#include "host/run/SensorValues.h"

#include "host/show/Json.h"
#include "ostrel/FieldClass.h"
#include "ostrel/FieldTypes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Host {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto timeOfFrame = 1ms; // that copying may take
constexpr auto freshness = 250ms; // for which copies are given out again
constexpr auto patience = 1000ms; // with the scene thread

// Pixels are not shown, and nodes are the scene thread's.
bool isToldAtOnce(const Ostrel::Field& field)
{
    constexpr std::array codes = {Ostrel::SFImage::typeCode, Ostrel::MFImage::typeCode, Ostrel::SFNode::typeCode,
                                  Ostrel::MFNode::typeCode};
    return std::ranges::find(codes, field.getTypeCode()) != codes.end();
}
} // namespace

SensorValues::SensorValues(std::vector<Scenes::SensorWatch*> watches) : _watches(std::move(watches))
{
    for (std::size_t i = 0; i < _watches.size(); ++i)
        _byTitle.emplace(_watches[i]->title(), i);
}

SensorValues::Copy SensorValues::copyOf(const Scenes::SensorWatch& watch, double now)
{
    Copy copy{nullptr, {}, {watch.changes(), watch.age(now)}};
    const auto* const fieldClass = Ostrel::FieldClass::find(watch.field().getTypeCode());
    if (!fieldClass || isToldAtOnce(watch.field())) {
        copy._json = fieldText(watch.field());
    } else {
        copy._field = fieldClass->create();
        copy._field->copyValue(watch.field());
    }
    return copy;
}

void SensorValues::endFrame(double now)
{
    if (!_isWanted.load(std::memory_order_acquire))
        return;
    for (const Time start = Clock::now(); _young.size() < _watches.size() && Clock::now() - start < timeOfFrame;)
        _young.push_back(copyOf(*_watches[_young.size()], now));
    if (_young.size() < _watches.size())
        return;
    std::shared_ptr<const Copies> copies = std::make_shared<Copies>(std::exchange(_young, {}));
    {
        const Ostrel::LockGuard guard(_lock);
        _copies.swap(copies); // the old ones go outside the lock
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

std::shared_ptr<const SensorValues::Copies> SensorValues::copies()
{
    const Ostrel::LockGuard guard(_lock);
    const Time latest = Clock::now() + patience;
    while (!isFresh() && !_isOver && Clock::now() >= _stuckUntil && Clock::now() < latest) {
        _isWanted.store(true, std::memory_order_release);
        _news.wait_until(_lock, latest);
    }
    if (!isFresh() && Clock::now() >= latest)
        _stuckUntil = Clock::now() + patience;
    return isFresh() ? _copies : nullptr;
}

std::string SensorValues::json(const std::string& title)
{
    const auto known = _byTitle.find(title);
    const auto fresh = known == _byTitle.end() ? nullptr : copies();
    if (!fresh)
        return "null";
    const Copy& copy = (*fresh)[known->second];
    return copy._field ? fieldText(*copy._field) : copy._json;
}

Monitor::ChangeCounts SensorValues::changes(const std::string& title)
{
    const auto known = _byTitle.find(title);
    const auto fresh = known == _byTitle.end() ? nullptr : copies();
    return fresh ? (*fresh)[known->second]._changes : Monitor::ChangeCounts();
}
} // namespace Host
