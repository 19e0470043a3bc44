// First line: a field class. Below: a value as scenes write it. A value that is taken, shown as JSON and taken again
// is the same value; nearly all JSON can be read as a scene's value.
#include "fuzz/Fuzz.h"
#include "host/show/Json.h"
#include "ostrel/FieldClass.h"
#include "scene/file/InitialValue.h"
#include "scene/file/ValueForm.h"
#include "scene/toml/Problems.h"
#include "scene/toml/SceneText.h"
#include "scene/toml/TomlValue.h"

namespace Fuzz {

namespace {

using FieldPtr = std::unique_ptr<Ostrel::Field>;

/// The field with the value that the text stands for; null where the text is none or does not fit the field.
FieldPtr read(const Ostrel::FieldClass& fieldClass, std::string_view text)
{
    Scenes::Problems problems("value");
    try {
        const std::string line = "value = " + std::string(text);
        Scenes::checkNesting(line, problems);
        problems.throwIfAny();
        const Scenes::TomlValue root = Scenes::parseToml(line, problems);
        problems.throwIfAny();
        FieldPtr field = fieldClass.create();
        const Scenes::TomlValue& value = std::get<Scenes::TomlValue::Table>(root._data).at(0)._value;
        const Scenes::TomlValue* wrong = Scenes::setInitialValue(*field, value);
        require(!wrong || isPrintable(Scenes::described(*wrong)), "what does not fit can be shown");
        return wrong ? nullptr : std::move(field);
    } catch (const Scenes::SceneError& refusal) {
        require(isPrintable(refusal.what()), "problems of a value can be shown as they are");
        return nullptr;
    }
}

std::string jsonOf(Ostrel::Field& field)
{
    std::string line = Host::jsonLine({0.0, std::nullopt}, {"", "", "", ""}, field);
    const std::string before = "\"value\":";
    line.erase(0, line.find(before) + before.size());
    return line.substr(0, line.size() - 2);
}

/// Numbers that JSON cannot write, and characters that a scene has no plain form for.
bool isOnlyJson(const std::string& json)
{
    return json.find("null") != std::string::npos || json.find('\x7F') != std::string::npos;
}

} // namespace

void runOnce(std::string_view input)
{
    const auto* fieldClass = Ostrel::FieldClass::find(takeLine(input));
    if (!fieldClass)
        return;
    const FieldPtr field = read(*fieldClass, input);
    if (!field)
        return;
    constexpr std::size_t shown = 60;
    const std::string forPeople = Host::valueText(*field, Host::Digits::Few, shown);
    require(forPeople.empty() || isPrintable(forPeople), "a value can be shown as it is");
    const std::string json = jsonOf(*field);
    if (isOnlyJson(json))
        return;
    const FieldPtr again = read(*fieldClass, json);
    require(again != nullptr, "a value that is shown can be read");
    require(jsonOf(*again) == json, "a value that is shown and read stays as it is");
}

} // namespace Fuzz
