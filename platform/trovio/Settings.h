#pragma once

#include "merid/URL.h"
#include "trovio/Exception.h"
#include "trovio/SettingValue.h"
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Trovio {

/// The checked values of a node's settings, one for every row of its table.
/// Asking for a name that the table does not have, or as another kind, is a mistake in the node: std::logic_error.
/// Threads: unchanged once built.
class Settings {
public:
    /// Reads blank-separated name=value pairs, the values bare or in single or double quotes; inside quotes the
    /// escapes \\ \' \" \n \t stand for one character each. Every row that the text leaves out has its default.
    /// Throws InvalidFieldException, with the setting, the value and what is allowed, for a text that breaks a rule.
    /// baseURL is what relative file names are resolved against, the working folder if it is empty; no relative name
    /// may lead out of it.
    Settings(const std::vector<Setting>& table, std::string_view text, const Merid::URL& baseURL = {});

    /// Whether the text named the setting, rather than leaving it to its default.
    bool isGiven(std::string_view name) const;

    /// The value as it was written, quotes and escapes resolved. Of any kind.
    const std::string& text(std::string_view name) const;
    bool flag(std::string_view name) const;
    std::int64_t integer(std::string_view name) const;
    double number(std::string_view name) const;
    /// The position of the value among the choices, from 0.
    std::size_t choice(std::string_view name) const;
    /// Nothing for an empty value.
    const std::optional<Endpoint>& endpoint(std::string_view name) const;
    /// The path of the file, resolved; empty for an empty value.
    const std::string& file(std::string_view name) const;

    /// For a node that finds more wrong with a value than its table says: throw what this returns.
    InvalidFieldException refusal(std::string_view name, std::string_view allowed) const;

private:
    struct Value {
        Setting _row;
        std::string _text;
        bool _given;
        SettingValue _read;
    };

    void assign(const std::string& name, std::string text);
    std::string knownNames(const std::string& wrong) const; // and which is nearest
    const Value& value(std::string_view name) const;
    const SettingValue& value(std::string_view name, SettingKind kind) const;

    std::map<std::string, Value, std::less<>> _values;
};

} // namespace Trovio
