#include "tests/dds/TwoMachines.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sched.h>
#include <system_error>
#include <unistd.h>

namespace Trovio::Nodes {

namespace {

/// Moves this process into a network namespace of its own; whoever is not the administrator becomes one in there.
void leaveNetwork()
{
    const auto user = ::getuid();
    const auto group = ::getgid();
    if (::unshare(user == 0 ? CLONE_NEWNET : CLONE_NEWNET | CLONE_NEWUSER) != 0)
        throw std::system_error(errno, std::generic_category(), "no rights to make network namespaces");
    if (user == 0)
        return;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
}

} // namespace

TwoMachines::TwoMachines()
{
    try {
        setUp();
    } catch (const std::exception& problem) {
        _hindrance = problem.what();
    }
}

void TwoMachines::setUp()
{
    leaveNetwork();
    _there.emplace("unshare", std::vector<std::string>{"--net", "sh", "-c", "echo $$; exec sleep 1000000"});
    if (!_there->waitFor("\n"))
        throw std::runtime_error("no second network namespace: " + _there->err());
    _pid = _there->out().substr(0, _there->out().find('\n'));
    _line.emplace("cable0", "plug0");
    run("ip link set plug0 netns " + _pid + " name cable0");
    run("ip address add 10.77.0.1/24 dev cable0 && ip link set cable0 up && ip link set lo up");
    runThere("ip address add 10.77.0.2/24 dev cable0");
    runThere("ip link set cable0 up");
    runThere("ip link set lo up");
}

void TwoMachines::run(const std::string& command)
{
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("failed: " + command);
}

} // namespace Trovio::Nodes
