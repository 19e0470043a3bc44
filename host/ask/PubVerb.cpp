#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/Steady.h"

#include <cmath>
#include <ctime>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

namespace Host {

using namespace Explain;
using nlohmann::json;

namespace {

void publish(HostClient& host, const Options& options, const json& record)
{
    host.ask({"/pub/" + encoded(options._label), "POST", jsonText(record)});
}

// Lets the time of one record pass after another, by a schedule that does not drift.
class Pace {
public:
    explicit Pace(std::optional<double> rate) : _rate(rate) {}

    void wait()
    {
        if (!_rate)
            return;
        const double now = steadySeconds();
        _next = _next == 0 || _next + 1 < now ? now : _next; // what is a second late is given up
        if (_next > now)
            pause(_next - now);
        _next += 1 / *_rate;
    }

private:
    static void pause(double seconds)
    {
        const double whole = std::floor(seconds);
        const timespec time = {static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
        nanosleep(&time, nullptr);
    }

    const std::optional<double> _rate;
    double _next = 0; // of the steady clock; 0 before the first
};

// A text need not stand in quotes.
json valueOf(const std::string& text)
{
    json value = json::parse(text, nullptr, false);
    return value.is_discarded() ? json(text) : value;
}

int publishValue(HostClient& host, const Options& options)
{
    const json record{{"value", valueOf(options._value)}};
    Pace pace(options._repeat);
    const std::uint64_t count = options._repeat || options._count != Options::Endless ? options._count : 1;
    for (std::uint64_t left = count; left > 0; --left) {
        pace.wait();
        publish(host, options, record);
    }
    return Done;
}

// The lines of echo --format json: {"value":…} with the stamp of the record, if it has one.
int publishInput(HostClient& host, const Options& options)
{
    Pace pace(options._repeat);
    std::uint64_t number = 0;
    for (std::string line; number < options._count && std::getline(std::cin, line);) {
        ++number;
        const json read = json::parse(line, nullptr, false);
        if (read.is_object() && read.contains("dropped"))
            continue;
        if (!read.is_object() || !read.contains("value"))
            throw AskError(BadUsage, "standard input, line " + std::to_string(number) + ": " + inQuotes(line) +
                                         " is no line of 'echo --format json', such as {\"value\":0.5}; the lines "
                                         "before it have been published");
        json record{{"value", read["value"]}};
        if (read.contains("stamp") && !options._stampNow)
            record["stamp"] = read["stamp"];
        pace.wait();
        publish(host, options, record);
    }
    return Done;
}
} // namespace

int pubVerb(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        return options._value == "-" ? publishInput(host, options) : publishValue(host, options);
    });
}
} // namespace Host
