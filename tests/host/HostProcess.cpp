#include "tests/host/HostProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

std::array<int, 2> newPipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("no pipe");
    return ends;
}
} // namespace

HostProcess::HostProcess(const std::string& program, const std::vector<std::string>& arguments, const winsize* terminal)
{
    const auto out = newPipe(), err = newPipe();
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    _child = terminal ? forkpty(&_terminal, nullptr, nullptr, terminal) : fork();
    if (_child < 0)
        fail("no process");
    if (_child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // a test that is ended leaves nothing behind
        if (!terminal) {
            dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
            dup2(out[1], STDOUT_FILENO);
            dup2(err[1], STDERR_FILENO);
        }
        execvp(argv[0], argv.data());
        _exit(127);
    }
    close(out[1]);
    close(err[1]);
    _out._end = out[0];
    if (terminal)
        dup3(_terminal, _out._end, O_CLOEXEC);
    _err._end = err[0];
}

HostProcess::~HostProcess()
{
    if (_child > 0) {
        kill(_child, SIGKILL);
        waitpid(_child, nullptr, 0);
    }
    for (const int end : {_out._end, _err._end, _terminal})
        if (end >= 0)
            close(end);
}

bool HostProcess::waitFor(const std::string& text)
{
    return waitFor(text, -1);
}

bool HostProcess::waitFor(const std::string& text, int patience)
{
    const auto written = [&] {
        return _out._text.find(text) != std::string::npos || _err._text.find(text) != std::string::npos;
    };
    bool found = written();
    while (!found && readMore(patience))
        found = written();
    return found;
}

bool HostProcess::readMore(int patience)
{
    const int out = _paused ? -1 : _out._end;
    std::array<pollfd, 2> waiting{pollfd{out, POLLIN, 0}, pollfd{_err._end, POLLIN, 0}};
    if ((out < 0 && _err._end < 0) || poll(waiting.data(), waiting.size(), patience) <= 0)
        return false;
    for (std::size_t i = 0; i < waiting.size(); ++i) {
        Stream& stream = i == 0 ? _out : _err;
        if (stream._end < 0 || waiting[i].revents == 0)
            continue;
        std::array<char, 65536> bytes{};
        const ssize_t count = read(stream._end, bytes.data(), bytes.size());
        if (count > 0)
            stream._text.append(bytes.data(), static_cast<std::size_t>(count));
        else
            close(std::exchange(stream._end, -1));
    }
    return true;
}

void HostProcess::signal(int number) const
{
    kill(_child, number);
}

void HostProcess::stopReading()
{
    close(std::exchange(_out._end, -1));
}

int HostProcess::wait()
{
    while (readMore(-1)) {
    }
    int status = 0;
    waitpid(std::exchange(_child, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}
