#include "host/run/GivenValues.h"

#include "host/run/TomlOfJson.h"
#include "scene/change/HandlerLabels.h"

#include <nlohmann/json.hpp>

namespace Host {

void GivenValues::note(const Scenes::SceneFiles& loaded, const std::string& label, const std::string& json)
{
    const Ostrel::LockGuard guard(_lock);
    if (_loaded != loaded) {
        _json.clear();
        _loaded = loaded;
    }
    _json[label] = json;
}

std::map<std::string, std::string> GivenValues::ofScene(const Scenes::Session::Files& files, std::size_t scene) const
{
    const std::vector<std::string> paths = Scenes::handlerLabels(files._running)[scene];
    std::map<std::string, std::string> values;
    const Ostrel::LockGuard guard(_lock);
    if (_loaded != files._loaded)
        return values;
    for (const Scenes::SensorEntry& sensor : files._running[scene]->_sensors)
        for (const std::string& path : paths)
            if (const auto found = _json.find(path + "/" + sensor._label._value); found != _json.end())
                if (const auto toml = tomlText(nlohmann::json::parse(found->second, nullptr, false)))
                    values[sensor._name._value] = *toml;
    return values;
}
} // namespace Host
