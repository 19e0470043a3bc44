#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Host {

/// One row of the live table; texts are free of control characters.
struct TableRow {
    std::string _name;
    std::string _type;
    std::string _value;
    double _perSecond = 0; // values
    double _age = -1;      // seconds since the last value, negative if there was none
};

/// The columns of the live table, in lines of at most `width` columns. The value keeps room on a narrow terminal, too:
/// names are cut, and type, rate and age are left out, in this order.
class TableLayout {
public:
    /// With the widths of the longest name and the longest type.
    TableLayout(std::size_t width, std::size_t name, std::size_t type);

    std::string heading() const;

    /// Whether the value stands beside its name; if not, it gets lines of its own.
    bool fits(const TableRow& row) const;

    /// The row as text without line ends, its value on lines of its own if `below`.
    std::vector<std::string> lines(const TableRow& row, bool below) const;

private:
    std::size_t others() const;
    std::string line(const std::string& name, const std::string& type, const std::string& value,
                     const std::string& rate, const std::string& age) const;

    std::size_t _width, _name, _value = 0;
    std::size_t _type, _rate, _age; // 0 where the column is left out
};

/// A part of a long table that fits on a screen.
struct TablePage {
    std::size_t _first = 0, _count = 0; // rows
    std::vector<std::string> _lines;
};

/// As many of `rows` rows as fit into `room` lines, from `first` on, or the last ones where there are not so many more.
TablePage tablePage(std::size_t rows, std::size_t first, std::size_t room,
                    const std::function<std::vector<std::string>(std::size_t row)>& linesOf);
} // namespace Host
