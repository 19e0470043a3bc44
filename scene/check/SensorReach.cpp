#include "scene/check/SensorReach.h"

#include "explain/SlotTypes.h"
#include "ostrel/FieldClass.h"

namespace Scenes {

using namespace Explain;

std::set<std::string> linkTargets(const SceneFile& scene)
{
    std::set<std::string> names;
    for (const LocatedPair& link : scene._links)
        names.insert(link._second._value.substr(0, link._second._value.rfind('.')));
    return names;
}

std::string noSlotFor(const std::string& type)
{
    return " is bound to nothing: no handler has a slot for it (" + type + ")";
}

std::string unconnected(bool isOutput, const std::string& why)
{
    return (isOutput ? " gives its values to nobody: " : " gets no values: ") + why;
}

std::string whyUnreached(const SensorEntry& sensor, const std::set<std::string>& linked)
{
    const std::string& type = sensor._type._value;
    if (slotTypeName(Ostrel::FieldClass::find(std::string_view(type))->code()) == "none")
        return noSlotFor(type);
    const bool isOutput = sensor._output._value;
    if (!isOutput && linked.contains(sensor._name._value))
        return {};
    return unconnected(isOutput, std::string("no route leads ") + (isOutput ? "from" : "to") + " its label");
}
} // namespace Scenes
