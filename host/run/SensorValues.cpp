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

void SensorValues::follow(std::vector<Scenes::SensorWatch*> watches)
{
    _watches = std::move(watches);
    _young.clear();
    auto positions = std::make_shared<Positions>();
    for (std::size_t i = 0; i < _watches.size(); ++i)
        positions->emplace(_watches[i]->title(), i);
    const Ostrel::LockGuard guard(_lock);
    _byTitle = std::move(positions);
    _round.reset();
    _made.reset();
}

const SensorValues::Copy* SensorValues::Round::find(const std::string& title) const
{
    const auto known = _byTitle->find(title);
    return known == _byTitle->end() ? nullptr : &_copies[known->second];
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
    auto made = std::make_shared<Round>();
    made->_copies = std::exchange(_young, {});
    std::shared_ptr<const Round> round = made;
    {
        const Ostrel::LockGuard guard(_lock);
        made->_byTitle = _byTitle;
        _round.swap(round); // the old ones go outside the lock
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

std::shared_ptr<const SensorValues::Round> SensorValues::round(const std::string& title)
{
    const Ostrel::LockGuard guard(_lock);
    if (!_byTitle->contains(title))
        return nullptr;
    const Time latest = Clock::now() + patience;
    while (!isFresh() && !_isOver && Clock::now() >= _stuckUntil && Clock::now() < latest) {
        _isWanted.store(true, std::memory_order_release);
        _news.wait_until(_lock, latest);
    }
    if (!isFresh() && Clock::now() >= latest)
        _stuckUntil = Clock::now() + patience;
    return isFresh() ? _round : nullptr;
}

std::string SensorValues::json(const std::string& title)
{
    const auto fresh = round(title);
    const Copy* const copy = fresh ? fresh->find(title) : nullptr;
    if (!copy)
        return "null";
    return copy->_field ? fieldText(*copy->_field) : copy->_json;
}

Monitor::ChangeCounts SensorValues::changes(const std::string& title)
{
    const auto fresh = round(title);
    const Copy* const copy = fresh ? fresh->find(title) : nullptr;
    return copy ? copy->_changes : Monitor::ChangeCounts();
}
} // namespace Host
