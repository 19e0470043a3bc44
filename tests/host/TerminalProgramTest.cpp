#include "tests/host/SceneOnDisk.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// The real program on a terminal of its own. Ownership: the destructor kills it if it still runs, and reaps it.
class HostOnTerminal {
public:
    HostOnTerminal(const SceneOnDisk& scene, unsigned short width, unsigned short height, const char* type = "xterm")
    {
        const winsize size = {height, width, 0, 0};
        _child = forkpty(&_terminal, nullptr, nullptr, &size);
        if (_child != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const rlimit noCore = {0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        setenv("TERM", type, 1);
        execl(HOST_PROGRAM, HOST_PROGRAM, "run", scene.path().c_str(), "--seconds", "15", nullptr);
        _exit(127);
    }
    ~HostOnTerminal()
    {
        if (_child > 0) {
            kill(_child, SIGKILL);
            waitpid(_child, nullptr, 0);
        }
        close(_terminal);
    }
    HostOnTerminal(const HostOnTerminal&) = delete;
    HostOnTerminal& operator=(const HostOnTerminal&) = delete;

    /// Reads until the text was shown since the last call, or nothing more comes.
    bool waitFor(const std::string& text)
    {
        std::array<char, 4096> bytes;
        while (_shown.find(text) == std::string::npos) {
            const ssize_t count = read(_terminal, bytes.data(), bytes.size());
            if (count <= 0)
                return false;
            _shown.append(bytes.data(), static_cast<std::size_t>(count));
            _all.append(bytes.data(), static_cast<std::size_t>(count));
        }
        _shown.clear();
        return true;
    }
    void type(const std::string& bytes) const { ASSERT_GT(write(_terminal, bytes.data(), bytes.size()), 0); }
    void signal(int number) const { kill(_child, number); }

    /// Reads to the end and returns all that was shown.
    const std::string& wait()
    {
        waitFor("\1");
        waitpid(_child, nullptr, 0);
        _child = -1;
        return _all;
    }
    bool waitsForLines() const
    {
        termios settings{};
        tcgetattr(_terminal, &settings);
        return (settings.c_lflag & (ICANON | ECHO)) == (ICANON | ECHO);
    }

private:
    pid_t _child = -1;
    int _terminal = -1;
    std::string _shown, _all;
};

std::string sensors(int count)
{
    std::string text;
    for (int i = 1; i <= count; ++i)
        text += "[[sensor]]\nname = \"s" + std::to_string(i) + "\"\ntype = \"SFFloat\"\n";
    return text;
}

TEST(HostOnTerminal, ShowsMoreThanAScreen)
{
    const SceneOnDisk scene(sensors(50));
    HostOnTerminal running(scene, 80, 12);
    EXPECT_TRUE(running.waitFor("1-9 of 50 "));
    running.type("\x1b[6~");
    EXPECT_TRUE(running.waitFor("\r\ns10 "));
    running.type("/s4");
    EXPECT_TRUE(running.waitFor("1-9 of 11, filter: s4_"));
    running.type("\x1b[F");
    EXPECT_TRUE(running.waitFor("3-11 of 11, filter: s4_"));
}

TEST(HostOnTerminal, GetsItsTerminalBackOnEveryWayOut)
{
    const SceneOnDisk scene(sensors(1));
    const std::vector<std::vector<int>> ways = {{SIGINT},  {SIGHUP},  {SIGSTOP, SIGINT, SIGTERM, SIGCONT},
                                                {SIGQUIT}, {SIGABRT}, {SIGSEGV}};
    for (const std::vector<int>& signals : ways) {
        HostOnTerminal running(scene, 80, 24);
        ASSERT_TRUE(running.waitFor("values/s"));
        EXPECT_FALSE(running.waitsForLines());
        for (const int number : signals)
            running.signal(number);
        running.wait();
        EXPECT_TRUE(running.waitsForLines()) << signals.front();
    }
}

TEST(HostOnTerminal, SendsNoCodesToADumbOne)
{
    const SceneOnDisk scene(sensors(1));
    HostOnTerminal running(scene, 80, 24, "dumb");
    ASSERT_TRUE(running.waitFor("sensor 's1' is bound to nothing"));
    running.signal(SIGTERM);
    EXPECT_EQ(running.wait().find('\x1b'), std::string::npos);
}
} // namespace
