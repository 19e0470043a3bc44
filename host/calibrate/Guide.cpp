#include "host/calibrate/Guide.h"

#include "explain/text/Escape.h"

#include <cstdio>

namespace Host {

using namespace Explain;

namespace {

std::string shortText(double number)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.4g", number);
    return text.data();
}
} // namespace

std::string pointText(const Point& point)
{
    return shortText(point[0]) + " " + shortText(point[1]) + " " + shortText(point[2]);
}

Guide::Guide(std::vector<KnownPoint> points, double still, std::string hint, Say say)
    : _points(std::move(points)), _still(still), _hint(std::move(hint)), _say(std::move(say)), _values(_points.size())
{
    _say("Enter measures for a second, s skips a point, b goes back, q gives up.");
    ask();
}

void Guide::ask()
{
    if (isOver())
        return;
    const KnownPoint& point = _points[_at];
    _say(std::to_string(_at + 1) + " of " + std::to_string(_points.size()) + ": hold the device at " +
         inQuotes(point._name) + " (" + pointText(point._place) + ") and press Enter");
}

void Guide::press(const KeyPress& press, double now)
{
    const bool isLetter = press._key == Key::Letter;
    if (press._key == Key::Escape || (isLetter && press._letter == 'q'))
        _gaveUp = true;
    else if (_hold || isOver())
        return;
    else if (press._key == Key::Enter)
        _hold.emplace(now);
    else if (isLetter && press._letter == 's')
        skip();
    else if (isLetter && press._letter == 'b')
        goBack();
}

void Guide::skip()
{
    _say(inQuotes(_points[_at]._name) + " is left out");
    _values[_at++].reset();
    ask();
}

void Guide::goBack()
{
    if (_at > 0)
        --_at;
    ask();
}

void Guide::frame(double now, const std::optional<Point>& value)
{
    if (!_hold)
        return;
    if (value)
        _hold->take(*value);
    if (_hold->isOver(now))
        endHold();
}

void Guide::endHold()
{
    const Hold hold = *_hold;
    _hold.reset();
    if (hold.count() < Hold::Fewest)
        return _say("only " + std::to_string(hold.count()) + " values came in that second, and it takes " +
                    std::to_string(Hold::Fewest) + "; press Enter again, or look at: " + _hint);
    if (const double spread = hold.spread(); spread > _still)
        return _say("it moved by " + shortText(spread) + " in that second; allowed: up to " + shortText(_still) +
                    " (--still); hold it still and press Enter again");
    _values[_at] = hold.median();
    _say("    " + pointText(*_values[_at]) + ", the median of " + std::to_string(hold.count()) +
         " values, nine of ten within " + shortText(hold.spread()));
    ++_at;
    ask();
}

std::vector<Guide::Measured> Guide::measured() const
{
    std::vector<Measured> all;
    for (std::size_t i = 0; i < _points.size(); ++i)
        if (_values[i])
            all.push_back({_points[i], *_values[i]});
    return all;
}
} // namespace Host
