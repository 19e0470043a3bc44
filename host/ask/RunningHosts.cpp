#include "host/ask/RunningHosts.h"

#include "explain/text/Escape.h"
#include "host/ExitCode.h"
#include "host/ask/Asking.h"
#include "host/ask/HostClient.h"
#include "monitor/server/doors/SocketFolder.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace Host {

using namespace Explain;
namespace Files = std::filesystem;

namespace {

constexpr double shortPatience = 1; // seconds, where an answer is only good to have

// What another user has put there is not asked: its answers would be shown as those of one's own host.
bool isOwn(const std::string& path)
{
    struct stat found = {};
    return stat(path.c_str(), &found) == 0 && found.st_uid == geteuid();
}

bool isNumber(const std::string& text)
{
    return !text.empty() && std::ranges::all_of(text, [](unsigned char byte) { return std::isdigit(byte) != 0; });
}

bool answers(const std::string& socket)
{
    try {
        const HostClient client(socket, "");
        return true;
    } catch (const AskError&) {
        return false;
    }
}

// "1234 (a.toml, b.toml)"
std::string described(const RunningHost& host)
{
    std::string scenes;
    try {
        HostClient client(host._socket, host.name());
        const nlohmann::json about = askJson(client, {"/host"}, shortPatience);
        for (const auto& scene : about.value("scenes", nlohmann::json::array()))
            scenes += (scenes.empty() ? "" : ", ") + scene.get<std::string>();
    } catch (const std::exception&) { // it is named all the same
    }
    return host._pid + (scenes.empty() ? "" : " (" + escaped(scenes) + ")");
}
} // namespace

std::string RunningHost::name() const
{
    return _pid.empty() ? "the host at " + inQuotes(_socket) : "host " + _pid;
}

std::vector<RunningHost> runningHosts()
{
    std::vector<RunningHost> hosts;
    const std::string folder = Monitor::socketFolder();
    if (!isOwn(folder))
        return hosts;
    std::error_code error;
    for (Files::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const Files::path path = entry->path();
        if (path.extension() == ".sock" && isNumber(path.stem().string()) && answers(path.string()))
            hosts.push_back({path.stem().string(), path.string()});
    }
    std::ranges::sort(hosts, {}, [](const RunningHost& host) { return std::pair(host._pid.size(), host._pid); });
    return hosts;
}

RunningHost chosenHost(const std::string& wish)
{
    if (!wish.empty() && !isNumber(wish))
        return {"", wish};
    const std::vector<RunningHost> hosts = runningHosts();
    const auto wished = std::ranges::find(hosts, wish, &RunningHost::_pid);
    if (wished != hosts.end())
        return *wished;
    std::string all;
    for (const RunningHost& host : hosts)
        all += (all.empty() ? "" : ", ") + described(host);
    if (hosts.empty())
        throw AskError(NothingFound, "no host runs here, as there is no socket of one in " +
                                         inQuotes(Monitor::socketFolder()) + "; start one with: ostrel-host run SCENE");
    if (!wish.empty())
        throw AskError(NothingFound, "no host has process ID " + wish + "; there is: " + all);
    if (hosts.size() > 1)
        throw AskError(BadUsage, std::to_string(hosts.size()) + " hosts run; choose one with --host PID: " + all);
    return hosts.front();
}
} // namespace Host
