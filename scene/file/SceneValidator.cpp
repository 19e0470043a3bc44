#include "scene/file/SceneValidator.h"

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "merid/URL.h"
#include "ostrel/FieldClass.h"
#include "scene/file/InitialValue.h"
#include "scene/file/SceneMemory.h"
#include "scene/file/ValueForm.h"
#include "trovio/Exception.h"
#include "trovio/Namespace.h"

#include <unordered_map>

namespace Scenes {

using namespace Explain;

namespace {

constexpr std::string_view fieldSuffix = ".value";
constexpr char toolLabels[] = " cannot be used: labels that begin with '@' belong to tools; use another";

// Names of one kind, each of which may be used once.
class UniqueNames {
public:
    UniqueNames(std::string_view what, std::string_view whose, Problems& problems)
        : _what(what), _whose(whose), _problems(problems)
    {
    }

    void add(const LocatedText& name)
    {
        const auto [first, added] = _lines.emplace(name._value, name._position._line);
        if (!added && !name._value.empty())
            _problems.add(name._position, "the " + _what + " " + inQuotes(name._value) + " is already used in line " +
                                              std::to_string(first->second) + "; allowed: one that no other " + _whose +
                                              " has");
    }

private:
    const std::string _what;
    const std::string _whose;
    std::unordered_map<std::string_view, unsigned> _lines;
    Problems& _problems;
};

class SceneValidator {
public:
    SceneValidator(const SceneFile& scene, Problems& problems) : _scene(scene), _problems(problems)
    {
        for (const auto& fieldClass : Ostrel::FieldClass::all())
            _typeNames.push_back(fieldClass.name());
        for (const SensorEntry& sensor : scene._sensors)
            _sensors.emplace(sensor._name._value, &sensor);
    }

    void run()
    {
        checkNames();
        checkMemory();
        for (const SensorEntry& sensor : _scene._sensors)
            checkSensor(sensor);
        for (const HandlerEntry& handler : _scene._handlers)
            checkHandler(handler);
        for (const LocatedPair& route : _scene._routes)
            checkRoute(route);
        for (const LocatedPair& link : _scene._links)
            checkLink(link);
    }

private:
    void checkNames();
    void checkMemory();
    void checkSensor(const SensorEntry& sensor);
    void checkHandler(const HandlerEntry& handler);
    void checkRoute(const LocatedPair& route);
    void checkLink(const LocatedPair& link);
    const SensorEntry* findField(const LocatedText& end);

    const SceneFile& _scene;
    Problems& _problems;
    std::vector<std::string_view> _typeNames;
    std::unordered_map<std::string_view, const SensorEntry*> _sensors;
    Trovio::Namespace _routes; // stands nowhere; takes routes to see whether they can be taken
};

void SceneValidator::checkNames()
{
    UniqueNames handlerNames("handler name", "handler", _problems);
    UniqueNames sensorNames("sensor name", "sensor", _problems);
    UniqueNames labels("label", "sensor", _problems);
    for (const HandlerEntry& handler : _scene._handlers)
        handlerNames.add(handler._name);
    for (const SensorEntry& sensor : _scene._sensors) {
        sensorNames.add(sensor._name);
        labels.add(sensor._label);
    }
}

// The memory for them is taken when the scene starts.
void SceneValidator::checkMemory()
{
    SceneMemory({&_scene, 1}).refuseAbove(_scene._host._memory._value, _problems);
}

void SceneValidator::checkSensor(const SensorEntry& sensor)
{
    const std::string name = inQuotes(sensor._name._value);
    if (sensor._label._value.size() > Trovio::MaxLabelLength)
        _problems.add(sensor._label._position, "the label of sensor " + name + " has " +
                                                   std::to_string(sensor._label._value.size()) +
                                                   " bytes; allowed: up to " + std::to_string(Trovio::MaxLabelLength));
    if (Trovio::isForTools(sensor._label._value))
        _problems.add(sensor._label._position,
                      "the label " + inQuotes(sensor._label._value) + " of sensor " + name + toolLabels);
    const std::string& type = sensor._type._value;
    const Ostrel::FieldClass* fieldClass = Ostrel::FieldClass::find(type);
    if (fieldClass == nullptr && !type.empty())
        _problems.add(sensor._type._position, "unknown field type " + inQuotes(type) + " of sensor " + name +
                                                  "; allowed: " + listed(_typeNames) + nearestHint(type, _typeNames));
    if (fieldClass == nullptr || !sensor._value)
        return;
    if (const TomlValue* wrong = setInitialValue(*fieldClass->create(), *sensor._value))
        _problems.add(wrong->_position, "the value of sensor " + name + " holds " + described(*wrong) +
                                            "; allowed for " + type + ": " + sceneForm(fieldClass->code()));
}

void SceneValidator::checkHandler(const HandlerEntry& handler)
{
    try {
        const Merid::URL url(handler._url._value);
    } catch (const std::invalid_argument& error) {
        _problems.add(handler._url._position, "the URL " + inQuotes(handler._url._value) + " of handler " +
                                                  inQuotes(handler._name._value) +
                                                  " cannot be used: " + escaped(error.what()));
    }
    for (const LocatedPair& route : handler._routes)
        checkRoute(route);
}

void SceneValidator::checkRoute(const LocatedPair& route)
{
    if (route._first._position._line == 0 || route._second._position._line == 0)
        return; // an end is missing, which has been said
    for (const LocatedText* end : {&route._first, &route._second})
        if (Trovio::isForTools(end->_value))
            _problems.add(end->_position, "the end " + inQuotes(end->_value) + " of a route" + toolLabels);
    try {
        _routes.addRoute(route._first._value, route._second._value);
    } catch (const Trovio::Exception& error) {
        _problems.add(route._first._position, "the route from " + inQuotes(route._first._value) + " to " +
                                                  inQuotes(route._second._value) +
                                                  " cannot be used: " + escaped(error.getMessage(), 400));
    }
}

const SensorEntry* SceneValidator::findField(const LocatedText& end)
{
    const std::string_view text = end._value;
    const std::string_view name = text.substr(0, text.size() - std::min(text.size(), fieldSuffix.size()));
    const auto sensor = text.ends_with(fieldSuffix) ? _sensors.find(name) : _sensors.end();
    if (sensor != _sensors.end())
        return sensor->second;
    if (_problems.full() || text.empty())
        return nullptr;
    std::vector<std::string> known;
    for (const SensorEntry& candidate : _scene._sensors)
        known.push_back(candidate._name._value + std::string(fieldSuffix));
    const std::vector<std::string_view> names(known.begin(), known.end());
    _problems.add(end._position, inQuotes(text) + " names no field of the scene; allowed: \"SENSOR.value\"" +
                                     nearestHint(text, names));
    return nullptr;
}

void SceneValidator::checkLink(const LocatedPair& link)
{
    const SensorEntry* from = findField(link._first);
    const SensorEntry* to = findField(link._second);
    if (from == nullptr || to == nullptr)
        return;
    const std::string target = inQuotes(link._second._value);
    if (from == to)
        _problems.add(link._second._position, target + " is linked to itself; allowed: another sensor's field");
    else if (from->_type._value != to->_type._value)
        _problems.add(link._second._position, target + " is of type " + escaped(to->_type._value) +
                                                  " and cannot take " + inQuotes(link._first._value) + " of type " +
                                                  escaped(from->_type._value) + "; allowed: two fields of one type");
}
} // namespace

void validateScene(const SceneFile& scene, Problems& problems)
{
    SceneValidator(scene, problems).run();
}
} // namespace Scenes
