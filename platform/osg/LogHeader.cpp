#include "osg/LogHeader.h"

#include <array>
#include <chrono>
#include <ctime>
#include <iterator>

namespace osg {

namespace {

std::string utcTime()
{
    using namespace std::chrono;
    const auto milliseconds = duration_cast<std::chrono::milliseconds>(system_clock::now().time_since_epoch()).count();
    const std::time_t seconds = milliseconds / 1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.", &parts);
    const std::string fraction = std::to_string(1000 + milliseconds % 1000).substr(1);
    return std::string(text.data(), size) + fraction + "Z";
}

struct Part {
    const char* _name;
    char _before; // what separates it from the part before
    std::string (*_text)(const LogRecord&);
};

const std::array<Part, 6> parts{{
    {"time", ' ', [](const LogRecord&) { return utcTime(); }},
    {"level", ' ', [](const LogRecord& record) { return std::string(levelName(record._level)); }},
    {"module", ' ', [](const LogRecord& record) { return std::string(record._module); }},
    {"file", ' ', [](const LogRecord& record) { return std::string(record._file); }},
    {"line", ':', [](const LogRecord& record) { return std::to_string(record._line); }},
    {"function", ' ', [](const LogRecord& record) { return std::string(record._function); }},
}};

constexpr unsigned allParts = (1U << std::size(parts)) - 1;
constexpr unsigned defaultParts = 0b011110; // level, module, file, line

unsigned partsNamed(std::string_view name)
{
    if (name == "all")
        return allParts;
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (name == parts[i]._name)
            return 1U << i;
    return 0;
}

} // namespace

const char* levelName(int level)
{
    static constexpr std::array names{"LOG", "FATAL", "WARNING", "NOTICE", "INFO", "DEBUG"};
    return level > 0 && level < static_cast<int>(names.size()) ? names[static_cast<std::size_t>(level)] : names[0];
}

LogHeader::LogHeader() : _parts(defaultParts) {}

bool LogHeader::select(std::string_view list, std::string& problem)
{
    unsigned selected = 0;
    if (list != "none") {
        for (std::size_t begin = 0; begin <= list.size();) {
            const std::size_t end = std::min(list.find(',', begin), list.size());
            const std::string_view name = list.substr(begin, end - begin);
            const unsigned bits = partsNamed(name);
            if (bits == 0) {
                problem = "unknown part '" + std::string(name) +
                          "' of a log header; allowed are time, level, module, file, line, function, separated by "
                          "commas, or all, or none";
                return false;
            }
            selected |= bits;
            begin = end + 1;
        }
    }
    _parts = selected;
    return true;
}

std::string LogHeader::text(const LogRecord& record) const
{
    std::string header;
    if (_parts == 0 || *record._file == '\0')
        return header;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if ((_parts & (1U << i)) == 0)
            continue;
        if (!header.empty())
            header += parts[i]._before;
        header += parts[i]._text(record);
    }
    return header + ": ";
}

} // namespace osg
