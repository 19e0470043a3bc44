#include "host/show/SensorFilter.h"

#include <algorithm>

namespace Host {
namespace {

std::string inSmallLetters(std::string text)
{
    for (char& letter : text)
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return text;
}
} // namespace

SensorFilter::SensorFilter(std::string text) : _text(std::move(text))
{
    _text.resize(std::min(_text.size(), MaxLength));
    if (!_text.empty())
        _pattern.emplace("*" + inSmallLetters(_text) + "*");
}

bool SensorFilter::passes(const std::string& name, const std::string& label) const
{
    return !_pattern || _pattern->match(inSmallLetters(name)) || _pattern->match(inSmallLetters(label));
}
} // namespace Host
