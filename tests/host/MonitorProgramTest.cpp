#include "tests/host/HostProcess.h"
#include "tests/host/HostQuestion.h"
#include "tests/support/SceneOnDisk.h"

#include <csignal>
#include <gtest/gtest.h>

namespace {

namespace Files = std::filesystem;
const std::string host = HOST_PROGRAM;

// Where runs of a test have their sockets.
class MonitorProgram : public ::testing::Test {
protected:
    MonitorProgram() { setenv("XDG_RUNTIME_DIR", folder().c_str(), 1); }
    ~MonitorProgram() override { unsetenv("XDG_RUNTIME_DIR"); }

    std::string folder() const { return Files::path(_scene.path()).parent_path(); }
    // The one socket that stands there; empty without.
    std::string socketPath() const
    {
        for (const auto& entry : Files::directory_iterator(folder() + "/ostrel"))
            return entry.path();
        return {};
    }
    std::string ask(const std::string& target) const { return askHost(socketPath(), target); }

    const SceneOnDisk _scene{"[host]\nmonitor = \"127.0.0.1:0\"\n"
                             "[[handler]]\nkind = \"Trovio\"\nname = \"a\"\n"
                             "[[sensor]]\nname = \"wand\"\ntype = \"SFVec3f\"\nlabel = \"Wand\"\nvalue = [1, 2, 3]\n"};
};

TEST_F(MonitorProgram, RunAnswersFromItsFirstFrameToItsLast)
{
    HostProcess running(host, {"run", _scene.path(), "--quiet"});
    ASSERT_TRUE(running.waitFor("monitor: http://127.0.0.1:")) << running.err();
    const std::string sensors = ask("/sensors");
    EXPECT_NE(sensors.find("\"wand\""), sensors.npos) << sensors;
    EXPECT_NE(sensors.find("[1.0,2.0,3.0]"), sensors.npos) << sensors;
    EXPECT_NE(ask("/host").find(Files::path(_scene.path()).filename()), std::string::npos);
    running.signal(SIGTERM);
    EXPECT_EQ(running.wait(), 0);
    EXPECT_EQ(socketPath(), "");
}

TEST_F(MonitorProgram, SocketOfAKilledRunIsNotInTheWayAndOneThatCannotBeMadeEndsNone)
{
    {
        HostProcess killed(host, {"run", _scene.path(), "--quiet"});
        ASSERT_TRUE(killed.waitFor("monitor: "));
        killed.signal(SIGKILL);
        killed.wait();
    }
    EXPECT_NE(socketPath(), "");
    HostProcess next(host, {"run", _scene.path(), "--quiet", "--frames", "3"});
    EXPECT_EQ(next.wait(), 0);
    EXPECT_EQ(socketPath(), "");
    Files::remove_all(folder() + "/ostrel");
    std::ofstream(folder() + "/ostrel") << "in the way";
    HostProcess last(host, {"run", _scene.path(), "--quiet", "--frames", "3"});
    EXPECT_EQ(last.wait(), 0);
    EXPECT_NE(last.err().find("is no folder of this user"), std::string::npos) << last.err();
}

TEST_F(MonitorProgram, OpenTellsTheAddressWithItsTokenAndADesktopOpensItWithout)
{
    HostProcess running(host, {"run", _scene.path(), "--quiet", "--monitor-write"});
    ASSERT_TRUE(running.waitFor("?token=")) << running.err();
    std::ofstream(folder() + "/xdg-open") << "#!/bin/sh\necho \"opened: $1\" > " + folder() + "/opened\n";
    Files::permissions(folder() + "/xdg-open", Files::perms::owner_all);
    HostProcess open("sh", {"-c", "cd " + folder() + " && mkfifo opened && DISPLAY=:0 PATH=.:$PATH " + host +
                                      " open && timeout 20 cat opened"});
    EXPECT_EQ(open.wait(), 0) << open.err();
    const std::string address = open.out().substr(0, open.out().find('\n'));
    EXPECT_NE(running.err().find(address), std::string::npos) << address;
    EXPECT_NE(open.out().find("opened: " + address.substr(0, address.find('?')) + "\n"), std::string::npos)
        << open.out();
}

TEST_F(MonitorProgram, AddressesThatAreNoneAreRefused)
{
    for (const char* const wrong : {"--monitor=nowhere", "--monitor=127.0.0.1:99999", "--monitor=[::1"}) {
        HostProcess running(host, {"run", _scene.path(), wrong});
        EXPECT_EQ(running.wait(), 2);
        EXPECT_NE(running.err().find("\"[::1]:8765\""), std::string::npos) << running.err();
    }
}
} // namespace
