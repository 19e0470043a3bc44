#include "nodes/serial/LineForm.h"

#include "nodes/serial/LineReader.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view marks = ":=,;";
constexpr std::size_t maxLabel = 255;

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == text.npos ? std::string_view() : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

} // namespace

LabelledLine splitLabel(std::string_view line)
{
    line = trimmed(line);
    const std::size_t end = line.find_first_of(BetweenNumbers);
    if (end == line.npos)
        return {line, {}};
    return {line.substr(0, end), trimmed(line.substr(end + 1))};
}

bool isLineLabel(std::string_view text)
{
    return !text.empty() && text.size() <= maxLabel && std::ranges::all_of(text, [](char character) {
        return character > ' ' && character <= '~' && marks.find(character) == marks.npos && character != '*';
    });
}

std::optional<std::string> formatLine(std::string_view label, const TextRecord& record, LineForm form)
{
    std::string line(form == LineForm::Labelled ? label : std::string_view());
    if (record._isText)
        line += (line.empty() ? "" : " ") + record._text;
    for (const TextNumber& number : record._numbers)
        line += (line.empty() ? "" : " ") + formatTextNumber(number);
    const bool isOneLine = line.find_first_of(std::string_view("\r\n\0", 3)) == line.npos;
    const bool isRead = !line.empty() && line.size() <= LineReader::MaxLine;
    return record._isFinite && isOneLine && isRead ? std::optional(line) : std::nullopt;
}

} // namespace Trovio::Nodes
