#pragma once

#include <string>

namespace Trovio {

/// What the value of a setting may be.
enum class SettingKind { Text, Bool, Integer, Number, Choice, Endpoint, File };

/// One row of a node type's table of settings: what the parser checks against and what listings print.
/// All texts live as long as the table, usually for ever.
struct Setting {
    const char* _name;
    SettingKind _kind;
    const char* _default; // as it would be written; null where the setting must be given
    const char* _meaning; // one line, with the unit
    double _lowest = 0.0; // of integers and numbers, both bounds included
    double _highest = 0.0;
    const char* _choices = ""; // "sine|ramp|square"; of a text in words

    /// `form` says in words which texts the node takes; the node itself refuses the others.
    static constexpr Setting text(const char* name, const char* initial, const char* meaning,
                                  const char* form = "any text")
    {
        return {name, SettingKind::Text, initial, meaning, 0.0, 0.0, form};
    }
    static constexpr Setting boolean(const char* name, const char* initial, const char* meaning)
    {
        return {name, SettingKind::Bool, initial, meaning};
    }
    static constexpr Setting integer(const char* name, const char* initial, double lowest, double highest,
                                     const char* meaning)
    {
        return {name, SettingKind::Integer, initial, meaning, lowest, highest};
    }
    static constexpr Setting number(const char* name, const char* initial, double lowest, double highest,
                                    const char* meaning)
    {
        return {name, SettingKind::Number, initial, meaning, lowest, highest};
    }
    static constexpr Setting choice(const char* name, const char* initial, const char* choices, const char* meaning)
    {
        return {name, SettingKind::Choice, initial, meaning, 0.0, 0.0, choices};
    }
    /// host:port; the host may be left out and is then the loopback, the port may be 0 for any free one.
    static constexpr Setting endpoint(const char* name, const char* initial, const char* meaning)
    {
        return {name, SettingKind::Endpoint, initial, meaning};
    }
    /// A file name; a relative one is looked for below the node's base URL.
    static constexpr Setting file(const char* name, const char* initial, const char* meaning)
    {
        return {name, SettingKind::File, initial, meaning};
    }
};

/// What is allowed, in words: "number from 0.1 to 1000", "one of sine, ramp, square".
std::string describeAllowed(const Setting& setting);

} // namespace Trovio
