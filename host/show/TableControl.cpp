#include "host/show/TableControl.h"

#include "explain/text/Escape.h"

#include <algorithm>
#include <limits>

namespace Host {

using namespace Explain;

namespace {

constexpr std::string_view orders[] = {"as in the scene", "by name", "most values first", "newest first"};

// Without its last character, however many bytes that has.
std::string withoutLast(std::string text)
{
    const auto isInner = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; };
    while (!text.empty() && isInner(text.back()))
        text.pop_back();
    if (!text.empty())
        text.pop_back();
    return text;
}
} // namespace

void TableControl::press(const KeyPress& press)
{
    if (press._key == Key::Escape)
        setFilter("");
    if (_isEditing)
        edit(press);
    else if (press == KeyPress{Key::Letter, '/'})
        _isEditing = true;
    else if (press == KeyPress{Key::Letter, 's'})
        _order = static_cast<Order>((static_cast<std::size_t>(_order) + 1) % std::size(orders));
    else
        scroll(press._key);
}

void TableControl::edit(const KeyPress& press)
{
    if (press._key == Key::Enter || press._key == Key::Escape)
        _isEditing = false;
    else if (press._key == Key::Backspace)
        setFilter(withoutLast(_filter.text()));
    else if (press._key == Key::Letter)
        setFilter(_filter.text() + press._letter);
    else
        scroll(press._key);
}

void TableControl::scroll(Key key)
{
    const std::size_t step = key == Key::Up || key == Key::Down ? 1 : _rows;
    if (key == Key::Home)
        _first = 0;
    else if (key == Key::End)
        _first = std::numeric_limits<std::size_t>::max();
    else if (key == Key::Up || key == Key::PageUp)
        _first -= std::min(step, _first);
    else if (key == Key::Down || key == Key::PageDown)
        _first += std::min(step, std::numeric_limits<std::size_t>::max() - _first);
}

void TableControl::setFilter(const std::string& text)
{
    _filter = SensorFilter(text);
    _first = 0;
}

void TableControl::shown(std::size_t first, std::size_t rows)
{
    _first = first;
    _rows = std::max<std::size_t>(rows, 1);
}

bool TableControl::hasStatus(std::size_t rows) const
{
    return _rows < rows || _isEditing || !_filter.text().empty() || _order != Order::Scene;
}

std::string TableControl::status(std::size_t rows, bool withKeys) const
{
    const std::size_t last = std::min(_first + _rows, rows);
    std::string text =
        std::to_string(std::min(_first + 1, rows)) + "-" + std::to_string(last) + " of " + std::to_string(rows);
    if (_order != Order::Scene)
        text += ", " + std::string(orders[static_cast<std::size_t>(_order)]);
    if (_isEditing)
        return text + ", filter: " + escaped(_filter.text()) + "_";
    if (!_filter.text().empty())
        text += ", filter " + inQuotes(_filter.text());
    return withKeys ? text + "  (/ filter, s sort, arrows PgUp PgDn Home End scroll)" : text;
}
} // namespace Host
