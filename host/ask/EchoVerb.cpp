#include "explain/SlotTypes.h"
#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/LineOutput.h"
#include "host/ask/Steady.h"
#include "host/show/Json.h"
#include "ostrel/FieldClass.h"
#include "trovio/Time.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;
using nlohmann::json;

namespace {

constexpr std::size_t maxValue = 400;

/// Makes lines of records, {"time":…,"stamp":…,"value":…}, in the format that was asked for.
class EchoLines {
public:
    EchoLines(LineOutput& out, Format format, const Ostrel::FieldClass* fieldClass)
        : _out(out), _format(format), _fieldClass(fieldClass), _start(Trovio::Time::getCurrentTime().getSeconds())
    {
    }

    /// False where nobody reads them.
    bool put(std::string_view text)
    {
        if (_format == Format::Json)
            return _out.put(std::string(text));
        const json record = json::parse(text, nullptr, false);
        if (!record.is_object() || !record.contains("value"))
            return _format == Format::Csv || _out.put(gapText(record));
        return _format == Format::Csv ? putCsv(record) : _out.put(lineOf(record));
    }

private:
    // Of what was left out, and of nothing else.
    static std::string gapText(const json& record)
    {
        return "dropped " + jsonText(record.is_object() ? record.value("dropped", json()) : record) +
               " records here, because they were not read in time";
    }

    std::string lineOf(const json& record) const
    {
        char seconds[32];
        std::snprintf(seconds, sizeof seconds, "%10.3f ", record.value("time", _start) - _start);
        const json& value = record["value"];
        return seconds + (_fieldClass ? valueText(value, *_fieldClass, Digits::All, maxValue) : jsonText(value));
    }

    // A value of always as many numbers has a column for each of them.
    bool putCsv(const json& record)
    {
        const json& value = record["value"];
        const bool hasParts = value.is_array() && _fieldClass && !_fieldClass->isMultiple();
        const json parts = hasParts ? value : json::array({value});
        std::string head = "time,stamp",
                    line = cell(record.value("time", json())) + "," + cell(record.value("stamp", json()));
        for (std::size_t i = 0; i < parts.size(); ++i) {
            head += hasParts ? ",value[" + std::to_string(i) + "]" : ",value";
            line += "," + cell(parts[i]);
        }
        const bool isFirst = std::exchange(_isFirst, false);
        return (!isFirst || _out.put(head)) && _out.put(line);
    }

    static std::string cell(const json& value)
    {
        if (value.is_null())
            return {};
        if (value.is_primitive() && !value.is_string())
            return jsonText(value);
        std::string text = value.is_string() ? value.get<std::string>() : jsonText(value);
        for (std::size_t at = 0; (at = text.find('"', at)) != std::string::npos; at += 2)
            text.insert(at, 1, '"');
        return "\"" + text + "\"";
    }

    LineOutput& _out;
    const Format _format;
    const Ostrel::FieldClass* const _fieldClass; // null where the type has none
    const double _start;                         // seconds of the wall clock
    bool _isFirst = true;
};

int streamSlot(HostClient& host, const HostSlot& slot, const Options& options)
{
    LineOutput out;
    const std::string fieldType = fieldTypeFor(slot._type);
    EchoLines lines(out, options._format, Ostrel::FieldClass::find(std::string_view(fieldType)));
    std::uint64_t left = options._count;
    const std::string count = left == Options::Endless ? "" : std::to_string(left);
    const auto end = host.follow({"/stream" + queryText({{"label", slot._label}, {"n", count}})}, options._seconds,
                                 [&](std::string_view line) {
                                     if (line.empty())
                                         return true;
                                     const bool isRecord = line.find("\"value\":") != std::string_view::npos;
                                     left -= isRecord ? 1 : 0;
                                     return lines.put(line) && left > 0;
                                 });
    if (end == HostClient::StreamEnd::Complete)
        throw HostEnded(Failed, "the host has ended, or has no such slot any more");
    const bool isShort = options._count != Options::Endless && left > 0 && end == HostClient::StreamEnd::TimeOver;
    return isShort ? NoAnswer : Done;
}

// By its name, with the scene before it where several run.
bool isCalled(const json& sensor, const std::string& name)
{
    const std::string own = sensor.at("name");
    return own == name || sensor.at("scene").get<std::string>() + ": " + own == name;
}

// The value as frames leave it, looked at as often as the host copies it; what comes and goes in between is not seen.
int followField(HostClient& host, const std::string& name, const Options& options)
{
    constexpr double interval = 0.25; // seconds
    const double end = steadySeconds() + options._seconds;
    LineOutput out;
    std::optional<EchoLines> lines;
    json last;
    for (std::uint64_t left = options._count; left > 0;) {
        const json sensors = askJson(host, {"/sensors"});
        const auto found = std::ranges::find_if(sensors, [&](const json& one) { return isCalled(one, name); });
        if (found == sensors.end())
            throw AskError(NothingFound, "the host has no sensor " + inQuotes(name) + " any more");
        if (!lines)
            lines.emplace(out, options._format,
                          Ostrel::FieldClass::find(std::string_view(found->at("field").get<std::string>())));
        const json news{{"changes", found->value("changes", json())}, {"value", found->at("value")}};
        if (std::exchange(last, news) != news) {
            --left;
            const json record{
                {"time", Trovio::Time::getCurrentTime().getSeconds()}, {"sensor", name}, {"value", found->at("value")}};
            if (!lines->put(jsonText(record)))
                return Done;
        }
        if (steadySeconds() >= end)
            return options._count == Options::Endless ? Done : NoAnswer;
        if (left > 0 && !out.wait(interval))
            return Done;
    }
    return Done;
}

// Nothing where a sensor is meant by its name, which several slots may serve.
std::optional<HostSlot> slotCalled(HostClient& host, const std::string& name)
{
    try {
        HostSlot slot = askSlots(host, name)._slots.front();
        const bool isByLabel = slot._label == name || slot._label.ends_with("/" + name);
        return isByLabel ? std::optional(std::move(slot)) : std::nullopt;
    } catch (const AskError&) {
        const json sensors = askJson(host, {"/sensors"});
        if (std::ranges::none_of(sensors, [&](const json& one) { return isCalled(one, name); }))
            throw;
        return std::nullopt;
    }
}
} // namespace

int echoVerb(const Options& options)
{
    return followHost(options, [&options](HostClient& host) {
        const auto slot = slotCalled(host, options._label);
        return slot ? streamSlot(host, *slot, options) : followField(host, options._label, options);
    });
}
} // namespace Host
