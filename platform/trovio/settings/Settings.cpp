#include "trovio/Settings.h"

#include "trovio/SettingValue.h"
#include "trovio/messages/NearestName.h"
#include "trovio/settings/SettingsParser.h"
#include <stdexcept>

namespace Trovio {

namespace {

InvalidFieldException refuse(const std::string& name, const std::string& value, std::string_view allowed)
{
    return InvalidFieldException("setting '" + name + "': value '" + value +
                                 "' is not allowed; allowed: " + std::string(allowed));
}

} // namespace

Settings::Settings(const std::vector<Setting>& table, std::string_view text, const Merid::URL& baseURL)
{
    for (const Setting& row : table)
        _values.try_emplace(row._name, Value{row, {}, false, {}});
    for (auto& [name, written] : parseSettings(text))
        assign(name, std::move(written));
    for (auto& [name, value] : _values) {
        if (!value._given && !value._row._default)
            throw InvalidFieldException("setting '" + name + "' must be given: " + describeAllowed(value._row) + ", " +
                                        value._row._meaning);
        if (!value._given)
            value._text = value._row._default;
        if (const auto problem = readSettingValue(value._row, value._text, baseURL, value._read))
            throw refuse(name, value._text, *problem);
    }
}

void Settings::assign(const std::string& name, std::string text)
{
    const auto found = _values.find(name);
    if (found == _values.end())
        throw InvalidFieldException("setting '" + name + "' (value '" + text +
                                    "') is not known; allowed: " + knownNames(name));
    if (found->second._given)
        throw InvalidFieldException("setting '" + name + "' is given twice, as '" + found->second._text + "' and as '" +
                                    text + "'; allowed: once");
    found->second._text = std::move(text);
    found->second._given = true;
}

std::string Settings::knownNames(const std::string& wrong) const
{
    std::string text;
    std::vector<std::string> names;
    for (const auto& [name, value] : _values) {
        text += (text.empty() ? "" : ", ") + name;
        names.push_back(name);
    }
    return text.empty() ? "none" : text + nearestHint(wrong, names);
}

const Settings::Value& Settings::value(std::string_view name) const
{
    const auto found = _values.find(name);
    if (found == _values.end())
        throw std::logic_error("no setting '" + std::string(name) + "' in the table");
    return found->second;
}

const SettingValue& Settings::value(std::string_view name, SettingKind kind) const
{
    const Value& found = value(name);
    if (found._row._kind != kind)
        throw std::logic_error("setting '" + std::string(name) + "' is of another kind in the table");
    return found._read;
}

bool Settings::isGiven(std::string_view name) const
{
    return value(name)._given;
}

const std::string& Settings::text(std::string_view name) const
{
    return value(name)._text;
}

bool Settings::flag(std::string_view name) const
{
    return value(name, SettingKind::Bool)._integer != 0;
}

std::int64_t Settings::integer(std::string_view name) const
{
    return value(name, SettingKind::Integer)._integer;
}

double Settings::number(std::string_view name) const
{
    return value(name, SettingKind::Number)._number;
}

std::size_t Settings::choice(std::string_view name) const
{
    return static_cast<std::size_t>(value(name, SettingKind::Choice)._integer);
}

const std::optional<Endpoint>& Settings::endpoint(std::string_view name) const
{
    return value(name, SettingKind::Endpoint)._endpoint;
}

const std::string& Settings::file(std::string_view name) const
{
    return value(name, SettingKind::File)._path;
}

InvalidFieldException Settings::refusal(std::string_view name, std::string_view allowed) const
{
    return refuse(std::string(name), value(name)._text, allowed);
}

} // namespace Trovio
