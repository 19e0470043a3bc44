#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/Columns.h"
#include "host/ask/HostSensors.h"
#include "host/ask/LineOutput.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;

namespace {

constexpr double rateWindow = 1; // seconds
constexpr std::size_t maxValue = 60;

std::string rateText(double perSecond)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", perSecond);
    return text;
}

// For the shell, which completes what stands on its command line, as the next one.
std::string nodeNamesText(HostClient& host)
{
    std::string text;
    for (const auto& node : askJson(host, {"/nodes"})) {
        const std::string label = node.at("node");
        text += escaped(label.substr(label.find('/') + 1), std::string::npos) + "\n";
    }
    return text;
}

std::string namesText(HostClient& host)
{
    std::string text;
    for (const HostSlot& slot : askSlots(host)._slots)
        text += escaped(slot._short, std::string::npos) + "\n";
    for (const auto& sensor : askJson(host, {"/sensors"}))
        text += escaped(sensor.at("name").get<std::string>(), std::string::npos) + "\n";
    return text;
}

std::string slotsText(const HostSlots& before, const HostSlots& now)
{
    std::vector<std::vector<std::string>> lines{{"slot", "", "type", "records/s", "records"}};
    for (const HostSlot& slot : now._slots)
        lines.push_back({escaped(slot._short), slot._isOut ? "out" : "in", slot._type,
                         rateText(ratePerSecond(slot, before, now)), std::to_string(slot._records)});
    return columns(lines, 3);
}

std::string sensorsText(const HostSensors& sensors)
{
    std::vector<std::vector<std::string>> lines{{"sensor", "type", "label", "value"}};
    const auto names = sensors.names();
    for (std::size_t i = 0; i < names.size(); ++i)
        lines.push_back(
            {escaped(names[i]._title), names[i]._type, escaped(names[i]._label), sensors.value(i, maxValue)});
    return "\n" + columns(lines, 4);
}

std::string nodesText(const nlohmann::json& nodes)
{
    std::vector<std::vector<std::string>> lines{{"node", "type", "state"}};
    for (const auto& node : nodes) {
        const std::string reason = node.value("reason", "");
        lines.push_back({escaped(node.at("node").get<std::string>()), node.at("type"),
                         node.at("state").get<std::string>() + (reason.empty() ? "" : ": " + escaped(reason, 600))});
    }
    return "\n" + columns(lines, 3);
}

std::string allAsJson(HostClient& host, const HostSlots& before)
{
    const HostSlots now = askSlots(host);
    nlohmann::json slots = askJson(host, {"/slots"});
    for (auto& slot : slots)
        if (const HostSlot* const known = now.tryFind(slot.at("label")))
            slot["rate"] = ratePerSecond(*known, before, now);
    const nlohmann::json all{
        {"slots", std::move(slots)}, {"sensors", askJson(host, {"/sensors"})}, {"nodes", askJson(host, {"/nodes"})}};
    return jsonText(all) + "\n";
}
} // namespace

int listVerb(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        LineOutput out;
        if (options._onlyNames)
            return out.write(namesText(host)), Done;
        if (options._onlyNodes)
            return out.write(nodeNamesText(host)), Done;
        const HostSlots before = askSlots(host);
        if (!out.wait(rateWindow))
            return Done;
        out.write(options._format == Format::Json ? allAsJson(host, before)
                                                  : slotsText(before, askSlots(host)) + sensorsText(HostSensors(host)) +
                                                        nodesText(askJson(host, {"/nodes"})));
        return Done;
    });
}
} // namespace Host
