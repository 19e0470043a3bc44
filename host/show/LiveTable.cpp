#include "host/show/LiveTable.h"

#include "explain/text/DisplayWidth.h"
#include "explain/text/TextWrap.h"

#include <algorithm>
#include <cstdio>

namespace Host {

using namespace Explain;

namespace {

constexpr std::size_t maxName = 28, minName = 12, minValue = 18, numberWidth = 8, gap = 2;
constexpr std::size_t maxLinesOfValue = 8, indent = 4;

std::string number(const char* format, double value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string rightAligned(const std::string& text, std::size_t width)
{
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

std::string ageText(double age)
{
    if (age < 0)
        return "-";
    return age < 100 ? number("%.1f s", age) : number("%.0f s", age);
}

// The value on lines of its own; the last one ends with … where more was left out.
std::vector<std::string> valueLines(const std::string& value, std::size_t width)
{
    const std::size_t start = width > 2 * indent ? indent : 0;
    std::vector<std::string> lines = wrapped(value, width - start, 0);
    if (lines.size() > maxLinesOfValue) {
        lines.resize(maxLinesOfValue);
        lines.back() = fitted(lines.back() + " …", std::min(displayWidth(lines.back()) + 2, width - start));
    }
    for (std::string& line : lines)
        line.insert(0, start, ' ');
    return lines;
}
} // namespace

TableLayout::TableLayout(std::size_t width, std::size_t name, std::size_t type)
    : _width(width),
      _name(std::min({name, maxName, std::max(width / 3, minName)})),
      _type(type),
      _rate(numberWidth),
      _age(numberWidth)
{
    for (std::size_t* column : {&_type, &_rate, &_age})
        if (others() + minValue > width)
            *column = 0;
    _value = width > others() ? width - others() : 0;
}

// Columns that are not the value's, with the gaps around it.
std::size_t TableLayout::others() const
{
    std::size_t columns = _name + gap;
    for (const std::size_t column : {_type, _rate, _age})
        columns += column == 0 ? 0 : column + gap;
    return columns;
}

std::string TableLayout::line(const std::string& name, const std::string& type, const std::string& value,
                              const std::string& rate, const std::string& age) const
{
    const std::string space(gap, ' ');
    std::string text = fitted(name, _name) + space;
    if (_type != 0)
        text += fitted(type, _type) + space;
    text += fitted(value, _value);
    if (_rate != 0)
        text += space + rightAligned(rate, _rate);
    if (_age != 0)
        text += space + rightAligned(age, _age);
    return fitted(text, _width);
}

std::string TableLayout::heading() const
{
    return line("sensor", "type", "value", "values/s", "age");
}

bool TableLayout::fits(const TableRow& row) const
{
    return displayWidth(row._value) <= _value;
}

std::vector<std::string> TableLayout::lines(const TableRow& row, bool below) const
{
    std::vector<std::string> lines = {
        line(row._name, row._type, below ? "" : row._value, number("%.1f", row._perSecond), ageText(row._age))};
    if (below)
        std::ranges::move(valueLines(row._value, _width), std::back_inserter(lines));
    return lines;
}

TablePage tablePage(std::size_t rows, std::size_t first, std::size_t room,
                    const std::function<std::vector<std::string>(std::size_t row)>& linesOf)
{
    TablePage page;
    page._first = std::min(first, rows);
    // Adds a row where there is room for it, and for one at least as much as there is.
    const auto add = [&](std::size_t row, bool atFront) {
        std::vector<std::string> lines = linesOf(row);
        if (page._count == 0)
            lines.resize(std::min(lines.size(), room));
        if (lines.empty() || page._lines.size() + lines.size() > room)
            return false;
        page._lines.insert(atFront ? page._lines.begin() : page._lines.end(), lines.begin(), lines.end());
        ++page._count;
        return true;
    };
    std::size_t next = page._first;
    while (next < rows && add(next, false))
        ++next;
    if (next == rows)
        while (page._first > 0 && add(page._first - 1, true))
            --page._first;
    return page;
}
} // namespace Host
