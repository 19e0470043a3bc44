#include "tests/host/HostProcess.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"

#include <csignal>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// The real program on a terminal of its own, which shows as many sensors.
class HostOnTerminal {
public:
    HostOnTerminal(int sensors, const winsize& size, const std::string& type = "xterm")
        : _scene(sceneOf(sensors)),
          _process(
              "sh",
              {"-c", "ulimit -c 0; TERM=$1 exec \"$0\" run \"$2\" --seconds 15", HOST_PROGRAM, type, _scene.path()},
              &size)
    {
    }
    HostProcess* operator->() { return &_process; }

    void type(const std::string& bytes) const { ASSERT_GT(write(_process.terminal(), bytes.data(), bytes.size()), 0); }
    bool waitsForLines() const
    {
        termios settings{};
        tcgetattr(_process.terminal(), &settings);
        return (settings.c_lflag & (ICANON | ECHO)) == (ICANON | ECHO);
    }

private:
    static std::string sceneOf(int sensors)
    {
        std::string text;
        for (int i = 1; i <= sensors; ++i)
            text += "[[sensor]]\nname = \"s" + std::to_string(i) + "\"\ntype = \"SFFloat\"\n";
        return text;
    }

    const SceneOnDisk _scene;
    HostProcess _process;
};

TEST(HostOnTerminal, ShowsMoreThanAScreen)
{
    HostOnTerminal running(50, {12, 80, 0, 0});
    const std::pair<const char*, const char*> rows[] = {{"\0", "1-9 of 50 "},
                                                        {"\x1b[6~", "\r\ns10 "},
                                                        {"/s4", "1-9 of 11, filter: s4_"},
                                                        {"\x1b[F", "3-11 of 11, filter: s4_"}};
    for (const auto& [typed, shown] : rows) {
        if (*typed)
            running.type(typed);
        EXPECT_TRUE(running->waitFor(shown)) << shown;
    }
}

TEST(HostOnTerminal, GetsItsTerminalBackOnEveryWayOut)
{
    const std::vector<std::vector<int>> ways = {{SIGINT},  {SIGHUP},  {SIGSTOP, SIGINT, SIGTERM, SIGCONT},
                                                {SIGQUIT}, {SIGABRT}, {SIGSEGV}};
    for (const std::vector<int>& signals : ways) {
        HostOnTerminal running(1, {24, 80, 0, 0});
        ASSERT_TRUE(running->waitFor("values/s"));
        EXPECT_FALSE(running.waitsForLines());
        for (const int number : signals)
            running->signal(number);
        running->wait();
        EXPECT_TRUE(running.waitsForLines()) << signals.front();
    }
}

TEST(HostOnTerminal, SendsNoCodesToADumbOne)
{
    HostOnTerminal running(1, {24, 80, 0, 0}, "dumb");
    ASSERT_TRUE(running->waitFor("sensor 's1' is bound to nothing"));
    running->signal(SIGTERM);
    running->wait();
    EXPECT_FALSE(says(running->out(), "\x1b"));
}
} // namespace
