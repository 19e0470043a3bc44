#include "scene/file/SceneMemory.h"

#include "explain/text/Escape.h"
#include "ostrel/FieldClass.h"
#include "sensorManager/FieldTypes.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <functional>

namespace Scenes {

using namespace Explain;

namespace {

constexpr std::uint64_t MiB = 1u << 20, GiB = 1u << 30;
constexpr std::uint64_t maxText = 65'507; // bytes that one OSC packet may carry
constexpr std::uint64_t worthANote = 64 * MiB;

constexpr std::size_t maxNamed = 3; // sensors

// A sensor of a type without slot takes nothing.
SensorMemory memoryOf(const SceneFile& scene, const SensorEntry& sensor, std::uint64_t handlers)
{
    SensorMemory memory{&scene, &sensor, 0, handlers, 0};
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
    memory._slots *= handlers;
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

// Where its `buffer` stands, or else its name.
Position bufferPosition(const SensorEntry& sensor)
{
    return sensor._buffer._position._line != 0 ? sensor._buffer._position : sensor._name._position;
}

std::string counted(std::uint64_t number, const std::string& what)
{
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

std::size_t nodesOf(const SceneFile& scene)
{
    std::size_t nodes = 0;
    for (const HandlerEntry& handler : scene._handlers)
        nodes += handler._nodes.size();
    return nodes;
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

SceneMemory::SceneMemory(std::span<const SceneFile> scenes) : _several(scenes.size() > 1)
{
    for (const SceneFile& scene : scenes) {
        const std::uint64_t handlers = bridgesOf(scene);
        for (const SensorEntry& sensor : scene._sensors) {
            const SensorMemory memory = memoryOf(scene, sensor, handlers);
            _bytes += memory._slots;
            _largest.insert(std::ranges::upper_bound(_largest, memory._slots, std::greater(), &SensorMemory::_slots),
                            memory);
            _largest.resize(std::min(_largest.size(), maxNamed));
        }
    }
}

std::string SceneMemory::largestText() const
{
    std::string text;
    for (const SensorMemory& memory : _largest) {
        const SensorEntry& sensor = *memory._sensor;
        text += (text.empty() ? "" : ", ") + bytesText(memory._slots) + " for sensor " + inQuotes(sensor._name._value);
        if (_several)
            text += " of " + escaped(memory._scene->_path);
        text += sensor._buffer._value == 0 ? " (no buffer"
                                           : " (a buffer of " + counted(sensor._buffer._value, "value") + " of " +
                                                 std::to_string(memory._record) + " bytes";
        text += (memory._handlers > 1 ? ", in each of " + counted(memory._handlers, "handler") : "") + ")";
    }
    return text.empty() ? "0 bytes" : text;
}

void SceneMemory::refuseAbove(std::uint64_t maxBytes, Problems& problems) const
{
    if (_bytes <= maxBytes)
        return;
    problems.add(bufferPosition(*_largest.front()._sensor),
                 "the slots and buffers of the sensors" + std::string(_several ? " of all scenes" : "") + " take " +
                     bytesText(_bytes) + " (" + std::to_string(_bytes) + " bytes), most of it " + largestText() +
                     "; allowed: up to " + bytesText(maxBytes) +
                     (_several ? ", the most that `memory` of [host] says in one of them"
                               : ", or what `memory` of [host] says"));
}

void checkSharedMemory(const std::vector<SceneFile>& files)
{
    const SceneMemory memory(files);
    if (files.size() < 2 || !memory.largestScene())
        return;
    std::uint64_t maxBytes = 0;
    for (const SceneFile& file : files)
        maxBytes = std::max(maxBytes, file._host._memory._value);
    Problems problems(memory.largestScene()->_path);
    memory.refuseAbove(maxBytes, problems);
    problems.throwIfAny();
}

std::optional<PinnedNote> pinnedBy(const SceneFile& scene)
{
    const std::uint64_t handlers = bridgesOf(scene);
    std::uint64_t values = 0, sensors = 0;
    const SensorEntry* largest = nullptr;
    for (const SensorEntry& sensor : scene._sensors) {
        if (sensor._output._value || sensor._label._value.empty() || !isLong(sensor._type._value))
            continue;
        ++sensors;
        values += std::max<std::uint64_t>(sensor._buffer._value, 1) * handlers; // without a buffer the newest one
        if (!largest || sensor._buffer._value > largest->_buffer._value)
            largest = &sensor;
    }
    if (values * maxText < worthANote)
        return std::nullopt;
    const std::string one = "sensor " + inQuotes(largest->_name._value) + " of type " + largest->_type._value;
    const std::string who =
        sensors == 1 ? "the buffer of " + one + " keeps "
                     : "the buffers of " + std::to_string(sensors) + " sensors, the largest that of " + one + ", keep ";
    return PinnedNote{bufferPosition(*largest), who + std::to_string(values) +
                                                    " values, also when they were taken, until others replace them: " +
                                                    bytesText(values * maxText) + " with values of " +
                                                    std::to_string(maxText) + " bytes; a smaller `buffer` keeps less"};
}

std::string askedFor(const std::vector<SceneFile>& files)
{
    std::string text;
    for (const SceneFile& file : files) {
        const SceneMemory memory({&file, 1});
        text += (text.empty() ? "" : "; ") + escaped(file._path) + " asks for " + bytesText(memory.bytes()) +
                " for the slots and buffers of its sensors alone, most of it " + memory.largestText() + ", and has " +
                counted(nodesOf(file), "node") + ", which need memory beside that, as threads and routes do";
    }
    return text;
}
} // namespace Scenes
