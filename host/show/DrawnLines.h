#pragma once

#include "explain/text/DisplayWidth.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Host {

/// Lines that are drawn on a terminal again and again in one place. Threads: one.
class DrawnLines {
public:
    /// The line with its end; it counts as drawn.
    std::string add(const std::string& line)
    {
        _widths.push_back(Explain::displayWidth(line));
        return line + "\n";
    }

    /// What moves up over all that was drawn, and takes it away; nothing counts as drawn then. Many terminals break
    /// lines anew where they have become narrower.
    std::string erase(std::size_t width)
    {
        std::size_t lines = 0;
        for (const std::size_t drawn : _widths)
            lines += std::max<std::size_t>((drawn + width - 1) / width, 1);
        _widths.clear();
        return lines == 0 ? "" : "\x1b[" + std::to_string(lines) + "A\r\x1b[J";
    }

private:
    std::vector<std::size_t> _widths; // columns
};
} // namespace Host
