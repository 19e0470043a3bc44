#include "scene/file/SceneReader.h"

#include "explain/text/ListenAddress.h"
#include "scene/file/RouteConversions.h"
#include "scene/file/SceneMemory.h"
#include "scene/file/SceneValidator.h"
#include "scene/toml/SceneText.h"
#include "scene/toml/TableReader.h"
#include "scene/toml/TomlValue.h"

#include <cmath>
#include <zlib.h>

namespace Scenes {

using namespace Explain;

namespace {

template <class T, class Entry>
using Member = Located<T> Entry::*;

// A key whose value is taken as it is.
template <class Entry, class T, Member<T, Entry> member>
const TomlValue* takePlain(const TomlValue& value, Entry& entry)
{
    const auto* plain = std::get_if<T>(&value._data);
    if (plain == nullptr)
        return &value;
    entry.*member = {*plain, value._position};
    return nullptr;
}

template <class Entry, LocatedText Entry::*member>
const TomlValue* takeName(const TomlValue& value, Entry& entry)
{
    const auto* text = std::get_if<std::string>(&value._data);
    return text == nullptr || text->empty() ? &value : takePlain<Entry, std::string, member>(value, entry);
}

const TomlValue* takeRate(const TomlValue& value, HostEntry& entry)
{
    const auto* whole = std::get_if<std::int64_t>(&value._data);
    const auto* number = std::get_if<double>(&value._data);
    const double rate = whole != nullptr ? static_cast<double>(*whole) : number != nullptr ? *number : 0;
    if (!(rate > 0 && rate <= maxRate))
        return &value;
    entry._rate = {rate, value._position};
    return nullptr;
}

const TomlValue* takeMemory(const TomlValue& value, HostEntry& entry)
{
    const auto* text = std::get_if<std::string>(&value._data);
    const std::uint64_t bytes = text != nullptr ? bytesIn(*text) : 0;
    if (bytes == 0)
        return &value;
    entry._memory = {bytes, value._position};
    return nullptr;
}

const TomlValue* takeMonitor(const TomlValue& value, HostEntry& entry)
{
    const auto* text = std::get_if<std::string>(&value._data);
    if (text == nullptr || !ListenAddress::read(*text))
        return &value;
    entry._monitor = {*text, value._position};
    return nullptr;
}

const TomlValue* takeBuffer(const TomlValue& value, SensorEntry& entry)
{
    const auto* size = std::get_if<std::int64_t>(&value._data);
    if (size == nullptr || *size < 0 || *size > maxBuffer)
        return &value;
    entry._buffer = {static_cast<unsigned>(*size), value._position};
    return nullptr;
}

const TomlValue* takeValue(const TomlValue& value, SensorEntry& entry)
{
    entry._value = value;
    return nullptr;
}

// A list of texts, from minTexts to maxTexts of them.
const TomlValue* takeTexts(const TomlValue& value, std::size_t minTexts, std::size_t maxTexts,
                           std::vector<LocatedText>& texts)
{
    const auto* list = std::get_if<TomlValue::List>(&value._data);
    if (list == nullptr || list->size() < minTexts || list->size() > maxTexts)
        return &value;
    for (const TomlValue& element : *list) {
        const auto* text = std::get_if<std::string>(&element._data);
        if (text == nullptr)
            return &element;
        texts.push_back({*text, element._position});
    }
    return nullptr;
}

// A list of up to maxCount lists of texts; `take` gets the texts of each.
template <std::size_t minTexts, std::size_t maxTexts, std::size_t maxCount, auto take>
const TomlValue* takeLists(const TomlValue& value, HandlerEntry& entry)
{
    const auto* list = std::get_if<TomlValue::List>(&value._data);
    if (list == nullptr || list->size() > maxCount)
        return &value;
    for (const TomlValue& element : *list) {
        std::vector<LocatedText> texts;
        if (const TomlValue* wrong = takeTexts(element, minTexts, maxTexts, texts))
            return wrong;
        take(entry, texts);
    }
    return nullptr;
}

void takeNode(HandlerEntry& entry, const std::vector<LocatedText>& texts)
{
    entry._nodes.push_back({texts[0], texts.size() > 1 ? texts[1] : LocatedText()});
}

void takeRoute(HandlerEntry& entry, const std::vector<LocatedText>& texts)
{
    if (texts.size() > 2)
        entry._conversions.push_back({entry._routes.size(), texts[2]});
    entry._routes.push_back({texts[0], texts[1]});
}

constexpr KeyRule<HostEntry> hostRules[] = {
    {"rate", "frames per second, a number above 0 and up to 10000", false, takeRate},
    {"memory", "a text such as \"2 GiB\" or \"512 MiB\", up to \"1024 GiB\"", false, takeMemory},
    {"monitor", ListenAddress::Allowed, false, takeMonitor}};

constexpr KeyRule<HandlerEntry> handlerRules[] = {
    {"kind", "a text, the handler kind, e.g. \"Trovio\"", true, takeName<HandlerEntry, &HandlerEntry::_kind>},
    {"name", "a text that is not empty", true, takeName<HandlerEntry, &HandlerEntry::_name>},
    {"url", "a text, a URL such as \"file:.\"", false, takePlain<HandlerEntry, std::string, &HandlerEntry::_url>},
    {"nodes", "a list of up to 1000 [\"node type\", \"settings\"], the settings may be left out", false,
     takeLists<1, 2, maxNodes, takeNode>},
    {"routes", "a list of up to 100000 [\"from\", \"to\"], or [\"from\", \"to\", \"conversions\"]", false,
     takeLists<2, 3, maxEntries, takeRoute>}};

constexpr KeyRule<SensorEntry> sensorRules[] = {
    {"name", "a text that is not empty", true, takeName<SensorEntry, &SensorEntry::_name>},
    {"type", "a text, a field type such as \"SFVec3f\"", true, takeName<SensorEntry, &SensorEntry::_type>},
    {"label", "a text", false, takePlain<SensorEntry, std::string, &SensorEntry::_label>},
    {"description", "a text", false, takePlain<SensorEntry, std::string, &SensorEntry::_description>},
    {"value", "a value of the sensor's type", false, takeValue},
    {"buffer", "a whole number of values from 0 to 1000000", false, takeBuffer},
    {"output", "true or false", false, takePlain<SensorEntry, bool, &SensorEntry::_output>}};

constexpr KeyRule<LocatedPair> pairRules[] = {
    {"from", "a text that is not empty", true, takeName<LocatedPair, &LocatedPair::_first>},
    {"to", "a text that is not empty", true, takeName<LocatedPair, &LocatedPair::_second>}};

constexpr std::string_view rootNames[] = {"host", "handler", "sensor", "route", "link"};

// Reads every table of [[title]] into `entries`; none of them if there are more than `maxCount`.
template <class Entry>
void readAll(const TomlEntry& found, std::span<const KeyRule<Entry>> rules, Problems& problems,
             std::vector<Entry>& entries, std::size_t maxCount = maxEntries)
{
    const std::string title = "[[" + found._key + "]]";
    const auto* list = std::get_if<TomlValue::List>(&found._value._data);
    if (list == nullptr)
        return problems.add(found._position, "'" + found._key + "' is " + described(found._value) +
                                                 "; allowed: tables, each under " + title);
    if (list->size() > maxCount)
        return problems.add((*list)[maxCount]._position, "the scene has " + std::to_string(list->size()) + " " + title +
                                                             "; allowed: up to " + std::to_string(maxCount));
    TableReader<Entry> reader(title, rules, problems);
    entries.reserve(list->size());
    for (const TomlValue& table : *list)
        entries.push_back(reader.read(table));
}

void readEntry(const TomlEntry& found, Problems& problems, SceneFile& scene)
{
    if (found._key == "host")
        scene._host = TableReader<HostEntry>("[host]", hostRules, problems).read(found._value);
    else if (found._key == "handler")
        readAll<HandlerEntry>(found, handlerRules, problems, scene._handlers, maxNodes);
    else if (found._key == "sensor")
        readAll<SensorEntry>(found, sensorRules, problems, scene._sensors);
    else if (found._key == "route")
        readAll<LocatedPair>(found, pairRules, problems, scene._routes);
    else if (found._key == "link")
        readAll<LocatedPair>(found, pairRules, problems, scene._links);
    else
        problems.add(found._position, "unknown key " + inQuotes(found._key) + "; allowed: " + listed(rootNames) +
                                          nearestHint(found._key, rootNames));
}
} // namespace

SceneFile parseScene(std::string_view text, const std::string& path)
{
    Problems problems(path);
    checkNesting(text, problems);
    problems.throwIfAny();
    const TomlValue root = parseToml(text, problems);
    problems.throwIfAny();
    SceneFile scene;
    scene._path = path;
    scene._text = text;
    scene._checksum = static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(text.data()), text.size()));
    for (const TomlEntry& found : std::get<TomlValue::Table>(root._data))
        readEntry(found, problems, scene);
    makeConversions(scene, text, problems);
    validateScene(scene, problems);
    problems.throwIfAny();
    return scene;
}

SceneFile readScene(const std::string& path)
{
    return parseScene(readSceneText(path), path);
}

std::vector<SceneFile> readScenes(const std::vector<std::string>& paths)
{
    std::vector<SceneFile> files;
    std::string wrong;
    for (const std::string& path : paths) {
        try {
            files.push_back(readScene(path));
        } catch (const std::bad_alloc&) {
            throw OutOfMemory(escaped(path) + ": memory ran out while the scene was read");
        } catch (const SceneError& error) {
            wrong.append(wrong.empty() ? "" : "\n").append(error.what());
        }
    }
    if (!wrong.empty())
        throw SceneError(wrong);
    checkSharedMemory(files);
    return files;
}
} // namespace Scenes
