#pragma once

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "scene/toml/Problems.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Scenes {

/// One key that a table may have: what its value may be, for messages, and what takes it. `_take` returns the value,
/// or the part of it, that does not fit; null when all of it does.
template <class Entry>
struct KeyRule {
    std::string_view _name;
    std::string_view _allowed;
    bool _required;
    const TomlValue* (*_take)(const TomlValue& value, Entry& entry);
};

/// Fills entries from tables by rules; what does not fit becomes a problem and leaves the entry's default.
template <class Entry>
class TableReader {
public:
    /// `title` names the table in messages, e.g. "[[sensor]]".
    TableReader(std::string_view title, std::span<const KeyRule<Entry>> rules, Problems& problems)
        : _title(title), _rules(rules), _problems(problems)
    {
        for (const auto& rule : rules)
            _names.push_back(rule._name);
    }

    Entry read(const TomlValue& value)
    {
        Entry entry;
        const auto* table = std::get_if<TomlValue::Table>(&value._data);
        if (table == nullptr) {
            _problems.add(value._position, described(value) + " is no " + _title + "; allowed: a table");
            return entry;
        }
        for (const TomlEntry& found : *table)
            take(found, entry);
        for (const auto& rule : _rules)
            if (rule._required && std::ranges::find(*table, rule._name, &TomlEntry::_key) == table->end())
                _problems.add(value._position, _title + " lacks '" + std::string(rule._name) + "', which must be " +
                                                   std::string(rule._allowed));
        return entry;
    }

private:
    void take(const TomlEntry& found, Entry& entry)
    {
        const auto rule = std::ranges::find(_rules, std::string_view(found._key), &KeyRule<Entry>::_name);
        if (rule == _rules.end())
            return _problems.add(found._position, "unknown key " + Explain::inQuotes(found._key) + " in " + _title +
                                                      "; allowed: " + Explain::listed(_names) +
                                                      Explain::nearestHint(found._key, _names));
        if (const TomlValue* wrong = rule->_take(found._value, entry))
            _problems.add(wrong->_position, "'" + found._key + "' of " + _title + " holds " + described(*wrong) +
                                                "; allowed: " + std::string(rule->_allowed));
    }

    const std::string _title;
    const std::span<const KeyRule<Entry>> _rules;
    std::vector<std::string_view> _names;
    Problems& _problems;
};
} // namespace Scenes
