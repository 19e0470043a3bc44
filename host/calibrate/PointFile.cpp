#include "host/calibrate/PointFile.h"

#include "explain/text/Escape.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <optional>
#include <stdexcept>

namespace Host {

using namespace Explain;

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string_view takeUntil(std::string_view& text, char end)
{
    const std::size_t at = std::min(text.find(end), text.size());
    const std::string_view taken = trimmed(text.substr(0, at));
    text.remove_prefix(std::min(at + 1, text.size()));
    return taken;
}

std::vector<std::string_view> cellsOf(std::string_view line)
{
    std::vector<std::string_view> cells;
    while (!line.empty())
        cells.push_back(takeUntil(line, ','));
    return cells;
}

std::optional<double> numberIn(std::string_view cell)
{
    double number = 0;
    const auto [end, problem] = std::from_chars(cell.data(), cell.data() + cell.size(), number);
    const bool isNumber = problem == std::errc() && end == cell.data() + cell.size() && std::isfinite(number);
    return isNumber && std::abs(number) <= 1e9 ? std::optional(number) : std::nullopt;
}

std::optional<KnownPoint> pointIn(const std::vector<std::string_view>& cells, std::size_t number)
{
    if (cells.size() != 3 && cells.size() != 4)
        return std::nullopt;
    KnownPoint point{cells.size() == 4 ? std::string(cells[0]) : "point " + std::to_string(number), {}};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto coordinate = numberIn(cells[cells.size() - 3 + i]);
        if (!coordinate)
            return std::nullopt;
        point._place[i] = *coordinate;
    }
    return point;
}

bool isHeading(const std::vector<std::string_view>& cells)
{
    for (const std::string_view cell : cells)
        if (numberIn(cell))
            return false;
    return true;
}
} // namespace

std::vector<KnownPoint> parsePoints(std::string_view text, const std::string& file)
{
    std::vector<KnownPoint> points;
    std::vector<Point> places;
    bool isFirst = true;
    for (unsigned line = 1; !text.empty(); ++line) {
        const std::string_view content = takeUntil(text, '\n');
        if (content.empty() || content.starts_with('#'))
            continue;
        const auto cells = cellsOf(content);
        const auto point = pointIn(cells, points.size() + 1);
        const std::string place = escaped(file) + ":" + std::to_string(line) + ": ";
        if (!point && !(isFirst && isHeading(cells)))
            throw std::runtime_error(place + inQuotes(content) +
                                     " is no point; allowed: x, y, z or name, x, y, z, numbers from -1e9 to 1e9");
        if (points.size() == maxPoints)
            throw std::runtime_error(place + "one point more than the " + std::to_string(maxPoints) + " allowed");
        isFirst = false;
        if (!point)
            continue;
        points.push_back(*point);
        places.push_back(point->_place);
    }
    if (const std::string why = whyNoFit(places); !why.empty())
        throw std::runtime_error(escaped(file) + ": no rotation follows from these points: " + why);
    return points;
}

std::vector<KnownPoint> readPoints(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string text(maxPointFile + 1, '\0');
    if (file)
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad() || !file.is_open() || (file.fail() && !file.eof()))
        throw std::runtime_error(escaped(path) + ": cannot be read; allowed: a file of points, one a line");
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > maxPointFile)
        throw std::runtime_error(escaped(path) + ": larger than the 1 MiB allowed");
    return parsePoints(text, path);
}
} // namespace Host
