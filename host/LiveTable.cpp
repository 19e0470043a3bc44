#include "host/LiveTable.h"

#include "host/Escape.h"
#include "osg/LogText.h"

#include <algorithm>
#include <cstdio>

namespace Host {
namespace {

constexpr std::size_t longestName = 28, numberWidth = 8, gap = 2;

std::string number(const char* format, double value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// Cut or filled to `width` columns.
std::string fitted(const std::string& text, std::size_t width)
{
    const std::size_t columns = displayWidth(text);
    if (columns <= width)
        return text + std::string(width - columns, ' ');
    std::size_t end = 0;
    for (std::size_t column = 0; column + 1 < width; ++column)
        end += std::max<std::size_t>(osg::utf8Length(std::string_view(text).substr(end)), 1);
    return width == 0 ? "" : text.substr(0, end) + "…";
}

std::string rightAligned(const std::string& text, std::size_t width)
{
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

template <std::string TableRow::*member>
std::size_t widest(const std::vector<TableRow>& rows, const char* heading)
{
    std::size_t width = displayWidth(heading);
    for (const TableRow& row : rows)
        width = std::max(width, displayWidth(row.*member));
    return std::min(width, longestName);
}

std::string ageText(double age)
{
    if (age < 0)
        return "-";
    return age < 100 ? number("%.1f s", age) : number("%.0f s", age);
}
} // namespace

std::string renderTable(const std::vector<TableRow>& rows, std::size_t width, std::size_t height)
{
    const std::size_t nameWidth = widest<&TableRow::_name>(rows, "sensor");
    const std::size_t typeWidth = widest<&TableRow::_type>(rows, "type");
    const std::size_t others = nameWidth + typeWidth + 2 * numberWidth + 4 * gap;
    const std::size_t valueWidth = width > others ? width - others : 0;
    const auto line = [&](const std::string& name, const std::string& type, const std::string& value,
                          const std::string& rate, const std::string& age) {
        const std::string space(gap, ' ');
        const std::string text = fitted(name, nameWidth) + space + fitted(type, typeWidth) + space +
                                 fitted(value, valueWidth) + space + rightAligned(rate, numberWidth) + space +
                                 rightAligned(age, numberWidth);
        return fitted(text, width) + "\n";
    };
    const std::size_t room = height > 2 ? height - 2 : 0; // for the heading and for what is left out
    const std::size_t shown = rows.size() <= room + 1 && height > 1 ? rows.size() : room;
    std::string table = line("sensor", "type", "value", "values/s", "age");
    for (std::size_t i = 0; i < shown; ++i)
        table += line(rows[i]._name, rows[i]._type, rows[i]._value, number("%.1f", rows[i]._perSecond),
                      ageText(rows[i]._age));
    if (shown < rows.size())
        table += ("and " + std::to_string(rows.size() - shown) + " more").substr(0, width) + "\n";
    return table;
}
} // namespace Host
