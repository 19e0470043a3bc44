#include "host/ask/HostSensors.h"

#include "host/ask/Asking.h"
#include "host/show/Json.h"
#include "ostrel/FieldClass.h"

#include <set>

namespace Host {

HostSensors::HostSensors(HostClient& host) : _host(host), _sensors(askJson(host, {"/sensors"})) {}

bool HostSensors::ask(double now)
{
    const std::vector<Names> before = names();
    _sensors = askJson(_host, {"/sensors"});
    _asked = now;
    return names() == before;
}

// A name says its scene where there are several, as in the table of the host itself.
std::vector<TableSensors::Names> HostSensors::names() const
{
    std::set<std::string> scenes;
    for (const auto& sensor : _sensors)
        scenes.insert(sensor.value("scene", ""));
    std::vector<Names> names;
    for (const auto& sensor : _sensors)
        names.push_back(
            {(scenes.size() > 1 ? sensor.value("scene", "") + ": " : "") + sensor.at("name").get<std::string>(),
             sensor.at("label"), sensor.at("field")});
    return names;
}

std::string HostSensors::value(std::size_t sensor, std::size_t limit) const
{
    const auto& about = _sensors[sensor];
    const auto* const fieldClass =
        Ostrel::FieldClass::find(std::string_view(about.at("field").get_ref<const std::string&>()));
    return fieldClass ? valueText(about.at("value"), *fieldClass, Digits::Few, limit) : "";
}

std::uint64_t HostSensors::changes(std::size_t sensor) const
{
    return _sensors[sensor].value("changes", std::uint64_t{0});
}

double HostSensors::age(std::size_t sensor, double now) const
{
    const auto& age = _sensors[sensor].value("age", nlohmann::json());
    return age.is_number() ? age.get<double>() + (now - _asked) : -1;
}
} // namespace Host
