#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Scenes {

/// Where something stands in a scene file, both from 1; 0 means the file as a whole.
struct Position {
    unsigned _line = 0;
    unsigned _column = 0;
    bool operator==(const Position&) const = default;
};

struct TomlEntry;

/// A value of a scene file with its place; dates and times are kept only as what they are: not wanted anywhere.
struct TomlValue {
    struct Date {};
    using List = std::vector<TomlValue>;
    using Table = std::vector<TomlEntry>;

    Position _position;
    std::variant<bool, std::int64_t, double, std::string, Date, List, Table> _data;
};

struct TomlEntry {
    std::string _key;
    Position _position;
    TomlValue _value;
};

/// "a text ('abc')", "a whole number (7)", "a list of 3": a value as a message shows it.
std::string described(const TomlValue& value);

class Problems;

/// The root table of TOML text that checkNesting has passed. A syntax error becomes a problem and an empty table.
TomlValue parseToml(std::string_view text, Problems& problems);
} // namespace Scenes
