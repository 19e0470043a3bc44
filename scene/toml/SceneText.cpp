#include "scene/toml/SceneText.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace Scenes {
namespace {

// Walks over the text and keeps line, column and depth. A dot of a key opens a table as a bracket does.
class NestingScan {
public:
    explicit NestingScan(std::string_view text) : _text(text) {}

    bool tooDeep()
    {
        while (_at < _text.size()) {
            step();
            if (_depth > maxNesting)
                return true;
        }
        return false;
    }
    Position position() const { return {_line, static_cast<unsigned>(_at - _lineStart)}; }

private:
    void step();
    void skipString(char quote);
    void advance(std::size_t count);
    bool follows(std::string_view what) const { return _text.substr(_at, what.size()) == what; }

    const std::string_view _text;
    std::size_t _at = 0, _lineStart = 0, _depth = 0;
    std::vector<std::size_t> _open; // depth outside of each open bracket
    unsigned _line = 1;
};

void NestingScan::advance(std::size_t count)
{
    for (; count > 0 && _at < _text.size(); --count, ++_at) {
        if (_text[_at] != '\n')
            continue;
        ++_line;
        _lineStart = _at + 1;
    }
}

void NestingScan::skipString(char quote)
{
    const std::string triple(3, quote);
    const bool manyLines = follows(triple);
    const std::string_view end = manyLines ? std::string_view(triple) : std::string_view(triple).substr(2);
    advance(end.size());
    while (_at < _text.size() && !follows(end) && (manyLines || _text[_at] != '\n'))
        advance(quote == '"' && _text[_at] == '\\' ? 2 : 1);
    advance(follows(end) ? end.size() : 0);
    // Up to two quotes right before the closing three belong to the text: """b""""" is b"".
    for (int i = 0; manyLines && i < 2 && follows(end.substr(2)); ++i)
        advance(1);
}

void NestingScan::step()
{
    const char c = _text[_at];
    if (c == '"' || c == '\'')
        return skipString(c);
    if (c == '#')
        return advance(std::min(_text.find('\n', _at), _text.size()) - _at);
    advance(1);
    if (c == '[' || c == '{') {
        _open.push_back(_depth++);
    } else if ((c == ']' || c == '}') && !_open.empty()) {
        _depth = _open.back();
        _open.pop_back();
    } else if (c == '.') {
        ++_depth;
    } else if (c == ',' || c == '\n') {
        _depth = _open.empty() ? 0 : _open.back() + 1;
    }
}

[[noreturn]] void refuse(const std::string& path, const std::string& text)
{
    Problems problems(path);
    problems.add({}, text);
    problems.throwIfAny();
    throw SceneError(text); // not reached: there is a problem
}
} // namespace

std::string readSceneText(const std::string& path)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        refuse(path, "is a folder; a scene is a file");
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        refuse(path, std::string("cannot be opened: ") + std::strerror(errno));
    std::string text;
    constexpr std::size_t chunk = 1u << 16;
    while (file && text.size() <= maxSceneFile) {
        const std::size_t held = text.size();
        text.resize(held + chunk);
        file.read(text.data() + held, chunk);
        text.resize(held + static_cast<std::size_t>(file.gcount()));
    }
    if (text.size() > maxSceneFile)
        refuse(path, "is larger than " + std::to_string(maxSceneFile) + " bytes, the most that a scene may have");
    if (file.bad())
        refuse(path, "cannot be read to its end");
    return text;
}

void checkNesting(std::string_view text, Problems& problems)
{
    NestingScan scan(text);
    if (scan.tooDeep())
        problems.add(scan.position(),
                     "nests deeper than " + std::to_string(maxNesting) + " levels, the most that a scene may have");
}
} // namespace Scenes
