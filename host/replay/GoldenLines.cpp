#include "explain/text/Escape.h"
#include "host/replay/FieldLines.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace Host {

using namespace Explain;
using nlohmann::json;

namespace {

constexpr std::size_t maxShown = 300; // bytes of a value

std::string shown(const json& line, const char* key)
{
    return line.contains(key) ? escaped(line[key].dump(-1, ' ', false, json::error_handler_t::replace), maxShown) : "";
}

json parsed(std::string_view line)
{
    const json object = json::parse(line, nullptr, false);
    return object.is_object() ? object : json();
}

std::string sensorOf(const json& line)
{
    const std::string scene = shown(line, "scene");
    return "sensor " + shown(line, "sensor") + (scene.empty() ? "" : " of scene " + scene);
}

// What differs between two lines, in words.
std::string difference(std::string_view comes, std::string_view golden, std::size_t number)
{
    const json now = parsed(comes), then = parsed(golden);
    const std::string place = "line " + std::to_string(number);
    if (then.is_null() || now.is_null())
        return escaped(comes, maxShown) + " comes, where " + place + " has " + escaped(golden, maxShown);
    for (const char* const key : {"value", "stamp", "time", "label", "type"})
        if (sensorOf(now) == sensorOf(then) && shown(now, key) != shown(then, key))
            return sensorOf(now) + ": the " + key + " is " + shown(now, key) + ", where " + place + " has " +
                   shown(then, key);
    return sensorOf(now) + " is " + shown(now, "value") + ", where " + place + " has " + sensorOf(then) + ", " +
           shown(then, "value");
}

class Golden final : public FieldLines {
public:
    explicit Golden(const std::string& path) : _path(path), _file(path, std::ios::binary)
    {
        if (!_file)
            throw std::runtime_error(escaped(path) + ": cannot be read; --write-golden makes it");
    }

    bool put(std::uint64_t frame, std::string_view lines) override
    {
        _frame = frame;
        while (!lines.empty() && _problem.empty()) {
            const std::size_t length = std::min(lines.find('\n'), lines.size() - 1) + 1;
            compareLine(lines.substr(0, length));
            lines.remove_prefix(length);
        }
        return _problem.empty();
    }

    std::string finish() override
    {
        std::string golden;
        if (_problem.empty() && std::getline(_file, golden))
            _problem = "the replay ends with frame " + std::to_string(_frame) + ", before line " +
                       std::to_string(_number + 1) + ": " + escaped(golden, maxShown);
        return _problem.empty() ? "" : escaped(_path) + ": " + _problem;
    }

private:
    void compareLine(std::string_view line)
    {
        std::string golden;
        const bool isThere = static_cast<bool>(std::getline(_file, golden));
        golden += _file.eof() ? "" : "\n";
        ++_number;
        if (isThere && golden == line)
            return;
        const std::string_view bare = line.substr(0, line.size() - 1);
        if (golden.ends_with('\n'))
            golden.pop_back();
        _problem =
            "frame " + std::to_string(_frame) + ": " +
            (isThere ? difference(bare, golden, _number) : escaped(bare, maxShown) + " comes, where the file ends");
    }

    const std::string _path;
    std::ifstream _file;
    std::uint64_t _frame = 0;
    std::size_t _number = 0; // lines compared
    std::string _problem;
};
} // namespace

std::unique_ptr<FieldLines> FieldLines::compare(const std::string& path)
{
    return std::make_unique<Golden>(path);
}
} // namespace Host
