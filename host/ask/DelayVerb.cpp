#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/Columns.h"
#include "host/ask/LineOutput.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;

namespace {

constexpr double defaultSeconds = 2;

std::string milliseconds(const nlohmann::json& seconds)
{
    if (!seconds.is_number())
        return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.3f ms", seconds.get<double>() * 1000);
    return text;
}

std::string hopTable(const nlohmann::json& hops)
{
    std::vector<std::vector<std::string>> lines{
        {"record at", "records", "median", "99 %", "least", "most", "+/- clocks"}};
    for (const auto& hop : hops) {
        lines.push_back({escaped(hop.at("hop").get<std::string>()), jsonText(hop.at("records"))});
        for (const char* const part : {"median", "p99", "least", "most", "bound"})
            lines.back().push_back(milliseconds(hop.value(part, nlohmann::json())));
    }
    return columns(lines, 1);
}
} // namespace

int delayVerb(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        const double seconds = std::isinf(options._seconds) ? defaultSeconds : options._seconds;
        const nlohmann::json answer =
            askJson(host,
                    {"/delay" +
                     queryText({{"from", options._from}, {"to", options._to}, {"seconds", std::to_string(seconds)}})},
                    seconds + 10);
        LineOutput().write(options._format == Format::Json ? jsonText(answer) + "\n" : hopTable(answer.at("hops")));
        return Done;
    });
}
} // namespace Host
