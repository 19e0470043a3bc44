#include "nodes/controller/DeviceFilter.h"

#include <algorithm>

namespace Trovio::Nodes {

namespace {

struct Part {
    const char* _name;
    std::string DeviceIdentity::*_text;
};
constexpr Part parts[] = {{"guid", &DeviceIdentity::_guid},
                          {"serial", &DeviceIdentity::_serial},
                          {"port", &DeviceIdentity::_port},
                          {"name", &DeviceIdentity::_name}};

constexpr std::size_t guidDigits = 32;

char toLower(char c)
{
    return c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

DeviceFilter::DeviceFilter(const Settings& settings)
{
    for (const Part& part : parts)
        _wanted.*part._text = settings.text(part._name);
    std::string& guid = _wanted._guid;
    std::transform(guid.begin(), guid.end(), guid.begin(), toLower);
    const bool isHex = guid.find_first_not_of("0123456789abcdef") == std::string::npos;
    if (!guid.empty() && (guid.size() != guidDigits || !isHex))
        throw settings.refusal("guid", "32 hexadecimal digits, or nothing for any controller");
}

bool DeviceFilter::admits(const DeviceIdentity& device) const
{
    return std::all_of(std::begin(parts), std::end(parts), [&](const Part& part) {
        const std::string& wanted = _wanted.*part._text;
        return wanted.empty() || wanted == device.*part._text;
    });
}

int DeviceFilter::getPrecision() const
{
    return static_cast<int>(std::count_if(std::begin(parts), std::end(parts),
                                          [this](const Part& part) { return !(_wanted.*part._text).empty(); }));
}

std::string DeviceFilter::describe() const
{
    std::string text;
    for (const Part& part : parts)
        if (const std::string& wanted = _wanted.*part._text; !wanted.empty())
            text += (text.empty() ? "with " : " ") + (part._name + ("='" + wanted)) + "'";
    return text;
}

} // namespace Trovio::Nodes
