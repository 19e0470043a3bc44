#include "tests/host/HostProcess.h"
#include "tests/host/HostQuestion.h"
#include "tests/support/SceneOnDisk.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>

namespace {

namespace Files = std::filesystem;
constexpr int slots = 10'000;

std::string largeScene()
{
    std::string scene = "[host]\nrate = 60\nmonitor = \"127.0.0.1:0\"\n[[handler]]\nkind = \"Trovio\"\nname = \"a\"\n";
    for (int i = 0; i < slots; ++i) {
        const std::string number = std::to_string(i);
        scene += "[[sensor]]\nname = \"s" + number + "\"\ntype = \"SFVec3f\"\nlabel = \"Sensor" + number + "\"\n";
    }
    return scene;
}

long leftOutAt(const std::string& socket)
{
    const std::string answer = askHost(socket, "/host"), key = "\"leftOut\":";
    const auto at = answer.find(key);
    EXPECT_NE(at, answer.npos) << answer;
    return at == answer.npos ? 0 : std::stol(answer.substr(at + key.size()));
}

// A machine that has much else to do leaves out frames by itself: of several times, one has to go well.
TEST(MetricsFrames, NoneIsLeftOutWhileTheTextOfTenThousandSlotsIsMade)
{
    const SceneOnDisk scene(largeScene());
    const std::string folder = Files::path(scene.path()).parent_path();
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    HostProcess running(HOST_PROGRAM, {"run", scene.path(), "--quiet"});
    ASSERT_TRUE(running.waitFor("monitor: ")) << running.err();
    const std::string socket = Files::directory_iterator(folder + "/ostrel")->path();
    long least = std::numeric_limits<long>::max();
    for (int i = 0; i < 10 && least > 0; ++i) {
        const long before = leftOutAt(socket);
        const std::string text = askHost(socket, "/metrics");
        least = std::min(least, leftOutAt(socket) - before);
        EXPECT_TRUE(text.ends_with("# EOF\n"));
        EXPECT_NE(text.find("slot=\"Context/Sensor" + std::to_string(slots - 1) + '"'), text.npos);
    }
    EXPECT_EQ(least, 0);
    running.signal(SIGTERM);
    EXPECT_EQ(running.wait(), 0);
}
} // namespace
