#include "explain/text/Escape.h"
#include "host/ExitCode.h"
#include "host/ask/AskVerbs.h"
#include "host/ask/Asking.h"
#include "host/ask/LineOutput.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <spawn.h>
#include <unistd.h>

namespace Host {
namespace {

std::string addressOf(const nlohmann::json& about)
{
    const auto addresses = about.value("addresses", std::vector<std::string>());
    if (addresses.empty())
        throw AskError(NothingFound, "host " + std::to_string(about.value("pid", 0)) +
                                         " has no address that a browser could open; start it with --monitor, as in: "
                                         "ostrel-host run SCENE --monitor");
    if (!addresses.front().starts_with("http://"))
        throw AskError(Failed, "the host says that its address is " + Explain::inQuotes(addresses.front()) +
                                   ", which is none of HTTP");
    return addresses.front();
}

bool hasDesktop()
{
    const auto isSet = [](const char* name) {
        const char* const value = std::getenv(name);
        return value && *value;
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

// A program of its own session, which outlives the terminal and says nothing there.
int startApart(const char* program, const std::string& argument)
{
    posix_spawn_file_actions_t streams;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&streams);
    posix_spawnattr_init(&attributes);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&streams, stream, "/dev/null", O_RDWR, 0);
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF);
    const std::string name = program;
    char* const arguments[] = {const_cast<char*>(name.c_str()), const_cast<char*>(argument.c_str()), nullptr};
    pid_t process = 0;
    const int problem = posix_spawnp(&process, program, &streams, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&streams);
    return problem;
}

// Everybody on the machine can read a command line, so no token stands in one: reading on loopback needs none.
void openOnDesktop(const std::string& address)
{
    const bool isLoopback = address.starts_with("http://127.") || address.starts_with("http://[::1]");
    const std::size_t token = address.find('?');
    if (!isLoopback && token != address.npos)
        std::fputs("not opened, for every user of this machine could read its token from the command line of the "
                   "browser; open the address in a browser by hand\n",
                   stderr);
    else if (const int problem = startApart("xdg-open", address.substr(0, token)); problem != 0)
        std::fprintf(stderr, "xdg-open cannot be started: %s; open the address in a browser\n", std::strerror(problem));
}
} // namespace

int openVerb(const Options& options)
{
    return askHost(options, [](HostClient& host) {
        const std::string address = addressOf(askJson(host, {"/host"}));
        LineOutput().put(Explain::escaped(address, address.size()));
        if (hasDesktop())
            openOnDesktop(address);
        return Done;
    });
}
} // namespace Host
