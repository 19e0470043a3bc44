#include "host/run/GivenValues.h"

#include "host/run/TomlOfJson.h"
#include "scene/change/HandlerLabels.h"

#include <nlohmann/json.hpp>

namespace Host {

void GivenValues::note(const std::string& label, const std::string& json)
{
    const Ostrel::LockGuard guard(_lock);
    _json[label] = json;
}

void GivenValues::forget(const std::vector<Scenes::SceneDifference>& done)
{
    Scenes::SceneFiles before;
    for (const Scenes::SceneDifference& difference : done)
        before.push_back(difference._before);
    const auto paths = Scenes::handlerLabels(before);
    const Ostrel::LockGuard guard(_lock);
    for (std::size_t i = 0; i < done.size(); ++i)
        for (const auto* const changes : {&done[i]._sensors, &done[i]._values})
            for (const Scenes::SensorChange& change : *changes)
                for (const std::string& path : paths[i])
                    if (change._before)
                        _json.erase(path + "/" + change._before->_label._value);
}

std::map<std::string, std::string> GivenValues::ofScene(const Scenes::Session::Files& files, std::size_t scene) const
{
    const std::vector<std::string> paths = Scenes::handlerLabels(files._running)[scene];
    std::map<std::string, std::string> values;
    const Ostrel::LockGuard guard(_lock);
    for (const Scenes::SensorEntry& sensor : files._running[scene]->_sensors)
        for (const std::string& path : paths)
            if (const auto found = _json.find(path + "/" + sensor._label._value); found != _json.end())
                if (const auto toml = tomlText(nlohmann::json::parse(found->second, nullptr, false)))
                    values[sensor._name._value] = *toml;
    return values;
}
} // namespace Host
