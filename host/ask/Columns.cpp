#include "host/ask/Columns.h"

#include "explain/text/DisplayWidth.h"

#include <algorithm>

namespace Host {

using namespace Explain;

std::string columns(const std::vector<std::vector<std::string>>& lines, std::size_t left)
{
    std::vector<std::size_t> widths;
    for (const auto& line : lines) {
        widths.resize(std::max(widths.size(), line.size()));
        for (std::size_t i = 0; i < line.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(line[i]));
    }
    std::string text;
    for (const auto& line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            const std::string space(widths[i] - displayWidth(line[i]), ' ');
            text += (i == 0 ? "" : "  ") + (i < left ? line[i] + space : space + line[i]);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    }
    return text;
}
} // namespace Host
