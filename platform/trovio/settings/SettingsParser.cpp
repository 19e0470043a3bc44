#include "trovio/settings/SettingsParser.h"

#include "trovio/Exception.h"

namespace Trovio {

namespace {

constexpr std::size_t maxTextLength = 65536;
constexpr std::string_view blanks = " \t\r\n";

class Parser {
public:
    explicit Parser(std::string_view text) : _text(text) {}

    std::vector<SettingText> pairs()
    {
        std::vector<SettingText> found;
        for (skipBlanks(); _position < _text.size(); skipBlanks()) {
            std::string name = readName();
            std::string value = readValue(name);
            found.emplace_back(std::move(name), std::move(value));
        }
        return found;
    }

private:
    bool atEnd() const { return _position == _text.size(); }
    bool atBlank() const { return blanks.find(_text[_position]) != std::string_view::npos; }

    void skipBlanks() { _position = std::min(_text.find_first_not_of(blanks, _position), _text.size()); }

    [[noreturn]] void fail(const std::string& problem) const
    {
        throw InvalidFieldException("at character " + std::to_string(_position + 1) + ": " + problem +
                                    "; allowed are blank-separated name=value pairs, the values bare or in quotes");
    }

    std::string readName()
    {
        const std::size_t end = std::min(_text.find_first_of(" \t\r\n='\"", _position), _text.size());
        std::string name(_text.substr(_position, end - _position));
        if (end == _text.size() || _text[end] != '=')
            fail("no '=' directly behind '" + name + "'");
        if (name.empty())
            fail("no name before '='");
        _position = end + 1;
        return name;
    }

    std::string readValue(const std::string& name)
    {
        if (!atEnd() && (_text[_position] == '\'' || _text[_position] == '"'))
            return readQuoted(name);
        const std::size_t end = std::min(_text.find_first_of(blanks, _position), _text.size());
        std::string value(_text.substr(_position, end - _position));
        _position = end;
        return value;
    }

    std::string readQuoted(const std::string& name)
    {
        const char quote = _text[_position];
        std::string value;
        for (++_position; !atEnd() && _text[_position] != quote; ++_position)
            value += _text[_position] == '\\' ? readEscape(name) : _text[_position];
        if (atEnd())
            fail(std::string("the value of '") + name + "' has no closing " + quote);
        ++_position;
        if (!atEnd() && !atBlank())
            fail("no blank behind the quoted value of '" + name + "'");
        return value;
    }

    char readEscape(const std::string& name)
    {
        static constexpr std::string_view codes = "\\'\"nt";
        static constexpr std::string_view meanings = "\\'\"\n\t";
        ++_position;
        const std::size_t code = atEnd() ? std::string_view::npos : codes.find(_text[_position]);
        if (code == std::string_view::npos)
            fail("unknown escape in the value of '" + name + R"('; there are \\ \' \" \n \t)");
        return meanings[code];
    }

    const std::string_view _text;
    std::size_t _position = 0;
};

} // namespace

std::vector<SettingText> parseSettings(std::string_view text)
{
    if (text.size() > maxTextLength)
        throw InvalidFieldException("the settings have " + std::to_string(text.size()) + " bytes; allowed are " +
                                    std::to_string(maxTextLength));
    return Parser(text).pairs();
}

} // namespace Trovio
