#include "monitor/answer/MetricsText.h"

#include "osg/LogText.h"

#include <algorithm>
#include <charconv>

namespace Monitor {

// The older format has no families that are called otherwise than their samples, and neither infos nor sets of states.
void MetricsText::family(std::string_view name, std::string_view type, std::string_view help)
{
    _name = std::string(name) + (type == "counter" ? "_total" : type == "info" ? "_info" : "");
    const bool isPlain = _format == Format::Plain;
    const std::string_view family = isPlain ? _name : name;
    const std::string_view told = isPlain && type != "counter" ? "gauge" : type;
    _text.append("# TYPE ").append(family).append(" ").append(told).append("\n# HELP ");
    _text.append(family).append(" ").append(help).append("\n");
}

void MetricsText::sample(Labels labels, std::uint64_t value)
{
    begin(labels);
    _text.append(std::to_string(value)).append("\n");
}

void MetricsText::sample(Labels labels, double value)
{
    begin(labels);
    char number[32];
    const auto written = std::to_chars(std::begin(number), std::end(number), value);
    _text.append(number, written.ptr).append("\n");
}

std::string MetricsText::finish() &&
{
    return std::move(_text.append(_format == Format::Plain ? "" : "# EOF\n"));
}

void MetricsText::begin(Labels labels)
{
    _text += _name;
    char before = '{';
    for (const auto& [name, value] : labels) {
        _text += std::exchange(before, ',');
        _text.append(name).append("=\"");
        putEscaped(value);
        _text += '"';
    }
    _text += labels.size() == 0 ? " " : "} ";
}

/// A line feed has a code of its own; what a terminal would obey, and what is no UTF-8, is written in words.
void MetricsText::putEscaped(std::string_view value)
{
    const auto isPlain = [](char byte) { return byte >= ' ' && byte < 0x7F && byte != '"' && byte != '\\'; };
    while (!value.empty()) {
        const auto plain = static_cast<std::size_t>(std::ranges::find_if_not(value, isPlain) - value.begin());
        _text += value.substr(0, plain);
        value.remove_prefix(plain);
        if (value.empty())
            break;
        const std::size_t length = std::max<std::size_t>(osg::utf8Length(value), 1);
        const std::string_view character = value.substr(0, length);
        if (character == "\n")
            _text += "\\n";
        else
            for (const char byte : osg::escapeControls(character)) {
                if (byte == '"' || byte == '\\')
                    _text += '\\';
                _text += byte;
            }
        value.remove_prefix(length);
    }
}

} // namespace Monitor
