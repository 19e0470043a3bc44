#include "scene/file/SceneMemory.h"

#include "explain/text/Escape.h"
#include "ostrel/FieldClass.h"
#include "scene/run/SceneParts.h"
#include "sensorManager/FieldTypes.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <numeric>

namespace Scenes {

using namespace Explain;

namespace {

constexpr std::uint64_t MiB = 1u << 20, GiB = 1u << 30;
constexpr std::uint64_t longestText = 65'507; // bytes that one OSC packet may carry
constexpr std::uint64_t worthANote = 64 * MiB;

// In one handler. A sensor of a type without slot takes nothing.
SensorMemory memoryOf(const SensorEntry& sensor)
{
    SensorMemory memory{&sensor};
    const Ostrel::FieldClass* const fieldClass = Ostrel::FieldClass::find(std::string_view(sensor._type._value));
    if (fieldClass == nullptr || sensor._label._value.empty())
        return memory;
    Ostrel::withFieldType(fieldClass->code(), [&]<class Row>(Row) {
        using Value = typename Row::SlotValue;
        memory._record = sizeof(Trovio::Data<Value>);
        memory._slots = sizeof(Trovio::OutSlot<Value>);
        if (!sensor._output._value)
            memory._slots = sizeof(Trovio::BufferedInSlot<Value>) + memory._record * sensor._buffer._value;
    });
    return memory;
}

std::uint64_t bridgesOf(const SceneFile& scene)
{
    return static_cast<std::uint64_t>(std::ranges::count_if(
        scene._handlers, [](const HandlerEntry& handler) { return handler._kind._value == bridgeKind; }));
}

// Whether a value holds memory of its own, beside its record.
bool isLong(const std::string& type)
{
    return type == "SFString" || type == "SFImage" || type.starts_with("MF");
}
} // namespace

std::string bytesText(std::uint64_t bytes)
{
    char text[40];
    if (bytes >= GiB)
        std::snprintf(text, sizeof text, "%.3g GiB", static_cast<double>(bytes) / GiB);
    else if (bytes >= MiB)
        std::snprintf(text, sizeof text, "%.3g MiB", static_cast<double>(bytes) / MiB);
    else
        std::snprintf(text, sizeof text, "%llu bytes", static_cast<unsigned long long>(bytes));
    return text;
}

std::uint64_t bytesIn(std::string_view text)
{
    std::uint64_t number = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    std::string_view unit(end, static_cast<std::size_t>(text.data() + text.size() - end));
    unit.remove_prefix(unit.starts_with(' ') ? 1 : 0);
    const std::uint64_t factor = unit == "MiB" ? MiB : unit == "GiB" ? GiB : 0;
    const bool fits = problem == std::errc() && factor != 0 && number <= 1024 * GiB / factor;
    return fits ? number * factor : 0;
}

SceneMemory::SceneMemory(const SceneFile& scene) : _handlers(bridgesOf(scene))
{
    for (const SensorEntry& sensor : scene._sensors) {
        SensorMemory memory = memoryOf(sensor);
        memory._slots *= _handlers;
        _bytes += memory._slots;
        if (!_largest._sensor || memory._slots > _largest._slots)
            _largest = memory;
    }
}

std::string SceneMemory::largestText() const
{
    if (!_largest._sensor)
        return "0 bytes";
    const SensorEntry& sensor = *_largest._sensor;
    return bytesText(_largest._slots) + " for sensor " + inQuotes(sensor._name._value) + ", with a buffer of " +
           std::to_string(sensor._buffer._value) + " values of " + std::to_string(_largest._record) +
           " bytes in each of " + std::to_string(_handlers) + " handlers";
}

std::vector<PinnedNote> pinnedBy(const SceneFile& scene)
{
    std::vector<PinnedNote> notes;
    const std::uint64_t handlers = bridgesOf(scene);
    for (const SensorEntry& sensor : scene._sensors) {
        const std::uint64_t values = std::uint64_t{sensor._buffer._value} * handlers;
        if (values * longestText < worthANote || sensor._output._value || !isLong(sensor._type._value))
            continue;
        notes.push_back(
            {&sensor, "the buffer of sensor " + inQuotes(sensor._name._value) + " keeps " + std::to_string(values) +
                          " values of type " + sensor._type._value +
                          ", also when they were taken, until others replace them: " + bytesText(values * longestText) +
                          " with values of " + std::to_string(longestText) + " bytes; a smaller `buffer` keeps less"});
    }
    return notes;
}

std::string askedFor(const std::vector<SceneFile>& files)
{
    std::string text;
    for (const SceneFile& file : files) {
        const SceneMemory memory(file);
        text += (text.empty() ? "" : "; ") + escaped(file._path) + " asks for " + bytesText(memory.bytes()) +
                " for the slots and buffers of its sensors, most of it, " + memory.largestText() + ", and has " +
                std::to_string(std::accumulate(
                    file._handlers.begin(), file._handlers.end(), std::size_t{0},
                    [](std::size_t sum, const HandlerEntry& handler) { return sum + handler._nodes.size(); })) +
                " nodes";
    }
    return text;
}
} // namespace Scenes
