#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/Steady.h"
#include "host/run/StopSignal.h"
#include "host/show/Terminal.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace Host {

using nlohmann::json;

namespace {

constexpr double endPatience = 60; // seconds that the host's disk may take to end a file

/// How the recording goes: on a terminal in one line, which goes at the end, else a line every ten seconds.
class StatusLine {
public:
    StatusLine() : _inPlace(hasCursor(STDERR_FILENO)) {}
    ~StatusLine()
    {
        if (_inPlace)
            std::fputs("\r\x1b[K", stderr);
    }
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    void show(const json& status)
    {
        const std::string text = status.at("text");
        if (_inPlace && isInFront(STDERR_FILENO))
            std::fprintf(stderr, "\r\x1b[K%s", text.c_str());
        else if (!_inPlace && ++_seconds % 10 == 0)
            std::fprintf(stderr, "%s\n", text.c_str());
    }

private:
    const bool _inPlace;
    unsigned _seconds = 0;
};

int tellEnd(const json& status)
{
    const std::string file = status.at("file"), problem = status.at("problem"), text = status.at("text");
    if (problem.empty())
        std::printf("recorded to %s: %s\n", file.c_str(), text.c_str());
    else
        std::fprintf(stderr, "%s\n", problem.c_str());
    return problem.empty() ? Done : Failed;
}

int tellStatus(const json& status)
{
    const std::string file = status.at("file"), text = status.at("text");
    if (status.at("recording"))
        std::printf("recording to %s: %s\n", file.c_str(), text.c_str());
    else if (file.empty())
        std::printf("nothing is being recorded\n");
    else
        return tellEnd(status);
    return Done;
}

// Until a signal, the end of the time, or an end that came from elsewhere; how it went then.
json follow(HostClient& host, double seconds)
{
    const StopSignal stop;
    StatusLine line;
    for (const double end = steadySeconds() + seconds; !stop.requested() && steadySeconds() < end;) {
        const json status = askJson(host, {"/recording"});
        if (!status.at("recording"))
            return status;
        line.show(status);
        stop.wait(std::min(1.0, end - steadySeconds()));
    }
    return askJson(host, {"/recording", "DELETE"}, endPatience);
}
} // namespace

int recordVerb(const Options& options)
{
    return askHost(options, [&options](HostClient& host) {
        if (options._stops)
            return tellEnd(askJson(host, {"/recording", "DELETE"}, endPatience));
        if (options._record.empty())
            return tellStatus(askJson(host, {"/recording"}));
        const json order{{"file", std::filesystem::absolute(options._record).string()},
                         {"slots", options._slots},
                         {"memory", static_cast<std::uint64_t>(options._memory * 1e6)}};
        askJson(host, {"/recording", "POST", order.dump(-1, ' ', false, json::error_handler_t::replace)});
        return tellEnd(follow(host, options._seconds));
    });
}
} // namespace Host
