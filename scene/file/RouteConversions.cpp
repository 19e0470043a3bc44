#include "scene/file/RouteConversions.h"

#include "explain/SlotTypes.h"
#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "ostrel/FieldClass.h"
#include "scene/file/ConversionParts.h"
#include "scene/file/SettingsText.h"
#include "scene/file/TextPlaces.h"
#include "trovio/Exception.h"
#include "trovio/settings/SettingsParser.h"

#include <algorithm>
#include <map>
#include <optional>

namespace Scenes {

using namespace Explain;

namespace {

constexpr std::string_view changesType = "Convert"; // the one filter with another type at each end

/// One filter of a conversion.
struct Stage {
    LocatedText _node;
    LocatedText _settings;
    std::vector<Trovio::SettingText> _given;

    bool changes() const { return _node._value == changesType; }
    std::string given(std::string_view name) const
    {
        const auto found = std::ranges::find(_given, name, &Trovio::SettingText::first);
        return found == _given.end() ? std::string() : found->second;
    }
    void set(std::string_view name, const std::string& value)
    {
        _settings._value.append(_settings._value.empty() ? "" : " ").append(settingText(name, value));
    }
};

class Conversions {
public:
    Conversions(const SceneFile& scene, std::string_view source, Problems& problems)
        : _places(source), _problems(problems)
    {
        for (const SensorEntry& sensor : scene._sensors)
            _sensors.emplace(sensor._label._value, &sensor);
    }

    void make(HandlerEntry& handler)
    {
        _numbers.clear();
        for (RouteConversion& conversion : handler._conversions)
            makeOne(handler, conversion);
    }

private:
    void makeOne(HandlerEntry& handler, RouteConversion& conversion);
    std::optional<std::vector<Stage>> read(const LocatedText& text);
    bool readSettings(Stage& stage);
    bool setTypes(const LocatedPair& route, std::vector<Stage>& stages);
    bool setType(Stage& stage, std::string_view near, std::string_view far, std::string& type,
                 const std::string& sensor);
    const SensorEntry* sensorAt(const std::string& label, bool isOutput) const;
    void insert(HandlerEntry& handler, const RouteConversion& conversion, std::vector<Stage>& stages);
    std::string freeLabel(const HandlerEntry& handler, const std::string& end);

    const TextPlaces _places;
    Problems& _problems;
    std::map<std::string_view, const SensorEntry*> _sensors; // by label
    std::map<std::string, unsigned> _numbers;                // of the newest node at an end, in one handler
};

void Conversions::makeOne(HandlerEntry& handler, RouteConversion& conversion)
{
    const LocatedPair route = handler._routes[conversion._route];
    if ((route._first._value + route._second._value).find('*') != std::string::npos)
        return _problems.add(conversion._text._position, "the route from " + inQuotes(route._first._value) + " to " +
                                                             inQuotes(route._second._value) +
                                                             " stands for several, so it takes no conversion; "
                                                             "allowed: labels without '*'");
    auto stages = read(conversion._text);
    if (!stages || !setTypes(route, *stages))
        return;
    if (handler._nodes.size() + stages->size() > maxNodes)
        return _problems.add(conversion._text._position, "with this conversion the handler has " +
                                                             std::to_string(handler._nodes.size() + stages->size()) +
                                                             " nodes; allowed: up to " + std::to_string(maxNodes));
    insert(handler, conversion, *stages);
    conversion._filters = stages->size();
}

std::optional<std::vector<Stage>> Conversions::read(const LocatedText& text)
{
    std::vector<Stage> stages;
    for (const ConversionPart& part : conversionParts(text._value)) {
        if (part._node.empty()) {
            _problems.add(_places.placeIn(text, part._nodeAt),
                          "a filter is missing in the conversion " + inQuotes(text._value) +
                              "; allowed: node types with their settings, with '|' between them");
            return std::nullopt;
        }
        Stage stage{{std::string(part._node), _places.placeIn(text, part._nodeAt)},
                    {std::string(part._settings), _places.placeIn(text, part._settingsAt)},
                    {}};
        if (!readSettings(stage))
            return std::nullopt;
        stages.push_back(std::move(stage));
    }
    return stages;
}

bool Conversions::readSettings(Stage& stage)
{
    try {
        stage._given = Trovio::parseSettings(stage._settings._value);
    } catch (const Trovio::InvalidFieldException& error) {
        _problems.add(stage._settings._position, "the settings of " + inQuotes(stage._node._value) +
                                                     " cannot be read: " + escaped(error.getMessage(), 400));
        return false;
    }
    if (stage.given("label").empty())
        return true;
    _problems.add(stage._settings._position, "'label' of " + inQuotes(stage._node._value) +
                                                 ": a node on a route is named after the route's end; for a label of "
                                                 "its own write it into 'nodes'");
    return false;
}

const SensorEntry* Conversions::sensorAt(const std::string& label, bool isOutput) const
{
    const auto found = _sensors.find(label);
    return label.empty() || found == _sensors.end() || found->second->_output._value != isOutput ? nullptr
                                                                                                 : found->second;
}

std::string slotTypeOf(const SensorEntry& sensor)
{
    const Ostrel::FieldClass* const known = Ostrel::FieldClass::find(std::string_view(sensor._type._value));
    return known ? slotTypeName(known->code()) : std::string();
}

// From the sensor on: back from one that takes values, forward from one that gives them.
bool Conversions::setTypes(const LocatedPair& route, std::vector<Stage>& stages)
{
    const SensorEntry* const taker = sensorAt(route._second._value, false);
    const SensorEntry* const giver = taker ? nullptr : sensorAt(route._first._value, true);
    std::string type = taker ? slotTypeOf(*taker) : giver ? slotTypeOf(*giver) : std::string();
    const std::string sensor = taker || giver ? (taker ? taker : giver)->_name._value : std::string();
    if (taker)
        return std::all_of(stages.rbegin(), stages.rend(),
                           [&](Stage& stage) { return setType(stage, "to", "type", type, sensor); });
    return std::ranges::all_of(stages, [&](Stage& stage) { return setType(stage, "type", "to", type, sensor); });
}

/// near, far: the setting of the type on the sensor's side of a filter with two types, and that of the other side.
bool Conversions::setType(Stage& stage, std::string_view near, std::string_view far, std::string& type,
                          const std::string& sensor)
{
    const std::string_view here = stage.changes() ? near : std::string_view("type");
    const std::string given = stage.given(here);
    if (given.empty() && type.empty()) {
        _problems.add(stage._node._position,
                      inQuotes(stage._node._value) + " lacks the setting '" + std::string(here) + "': " +
                          (sensor.empty()
                               ? "no end of the route is the label of a sensor that would tell the type"
                               : "what stands between it and sensor " + inQuotes(sensor) + " does not tell the type"));
        return false;
    }
    if (given.empty())
        stage.set(here, type);
    else
        type = given;
    if (!stage.changes())
        return true;
    type = stage.given(far);
    if (!type.empty())
        return true;
    _problems.add(stage._node._position, inQuotes(stage._node._value) + " lacks the setting '" + std::string(far) +
                                             "', the slot type of its other side; the sensor's is taken for this one");
    return false;
}

// No number twice, also where a node of the scene has such a label.
std::string Conversions::freeLabel(const HandlerEntry& handler, const std::string& end)
{
    const auto isUsed = [&handler](const std::string& label) {
        return std::ranges::any_of(handler._nodes, [&label](const LocatedPair& node) {
            return node._second._value.find(label) != std::string::npos;
        });
    };
    std::string label = end;
    std::ranges::replace(label, '/', '.');
    unsigned& number = _numbers[label];
    do
        ++number;
    while (isUsed(label + "~" + std::to_string(number)));
    return label + "~" + std::to_string(number);
}

void Conversions::insert(HandlerEntry& handler, const RouteConversion& conversion, std::vector<Stage>& stages)
{
    const LocatedPair route = handler._routes[conversion._route];
    const bool isTaken = sensorAt(route._second._value, false) || !sensorAt(route._first._value, true);
    LocatedText from = route._first;
    for (Stage& stage : stages) {
        const std::string label = freeLabel(handler, (isTaken ? route._second : route._first)._value);
        stage.set("label", label);
        const LocatedPair into{from, {label + "/in", stage._node._position}};
        if (&stage == &stages.front())
            handler._routes[conversion._route] = into;
        else
            handler._routes.push_back(into);
        from = {label + "/out", stage._node._position};
        handler._nodes.push_back({stage._node, stage._settings});
    }
    handler._routes.push_back({from, route._second});
}
} // namespace

void makeConversions(SceneFile& scene, std::string_view source, Problems& problems)
{
    if (std::ranges::all_of(scene._handlers, [](const HandlerEntry& handler) { return handler._conversions.empty(); }))
        return;
    Conversions conversions(scene, source, problems);
    for (HandlerEntry& handler : scene._handlers)
        conversions.make(handler);
}
} // namespace Scenes
