#include "benchmarks/dds/FarProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace Bench {

FarProcess::FarProcess(std::vector<std::string> arguments)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    const Trovio::Nodes::FileDescriptor input(ends[0]);
    _lifeline = Trovio::Nodes::FileDescriptor(ends[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.get(), STDIN_FILENO);
    std::vector<char*> list;
    for (std::string& argument : arguments)
        list.push_back(argument.data());
    list.push_back(nullptr);
    const int problem = ::posix_spawn(&_process, "/proc/self/exe", &actions, nullptr, list.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (problem != 0)
        throw std::runtime_error("no second process");
}

FarProcess::~FarProcess()
{
    _lifeline = Trovio::Nodes::FileDescriptor();
    ::waitpid(_process, nullptr, 0);
}

void FarProcess::waitForEnd()
{
    char nothing = 0;
    while (::read(STDIN_FILENO, &nothing, 1) > 0) {
    }
}

} // namespace Bench
