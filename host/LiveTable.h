#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Host {

/// One line of the live table; texts are free of control characters.
struct TableRow {
    std::string _name;
    std::string _type;
    std::string _value;
    double _perSecond = 0; // values
    double _age = -1;      // seconds since the last value, negative if there was none
};

/// The table as text, one line per row under a heading, no line wider than `width` columns. Rows beyond `height`
/// lines are counted in the last one.
std::string renderTable(const std::vector<TableRow>& rows, std::size_t width, std::size_t height);
} // namespace Host
