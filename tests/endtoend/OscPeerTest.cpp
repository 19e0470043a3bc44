#include "tests/endtoend/Programs.h"
#include "tests/nodes/UdpPeer.h"

#include <csignal>
#include <gtest/gtest.h>

namespace {

/// The example, with ports of its own.
std::string devicesScene(const std::string& sendPort)
{
    std::string scene = projectFile("examples/devices.toml");
    for (const auto& [from, to] : {std::pair<std::string, std::string>{"listen=127.0.0.1:9000", "listen=127.0.0.1:0"},
                                   {"send=127.0.0.1:9001", "send=127.0.0.1:" + sendPort}})
        scene.replace(scene.find(from), from.size(), to);
    return scene;
}

/// Behind the first `before` in text, up to the next comma.
std::string valueBehind(const std::string& text, const std::string& before)
{
    const std::string behind = text.substr(text.find(before) + before.size());
    return behind.substr(0, behind.find(','));
}

// A grip comes in from oscsend, a link carries it to the rumble, and that goes out to oscdump, which starts late.
TEST(OscPeer, GoesAwayAndComesBackAndALinkAnswersInTheFrame)
{
    const std::string port = std::to_string(Trovio::Nodes::UdpPeer().getPort()); // free again at once
    const SceneOnDisk scene(devicesScene(port));
    HostProcess running("env", {"OSG_LOG_LEVEL=3", host, "run", scene.path(), "--format", "json"});
    const std::string listening = listeningPort(running);
    ASSERT_TRUE(running.waitFor("node 'OSC' is degraded: nobody listens at 127.0.0.1:" + port)) << running.err();
    HostProcess dump("oscdump", {"-L", port});
    ASSERT_TRUE(running.waitFor("node 'OSC' runs again")) << running.err() << dump.err();

    HostProcess sender("oscsend", {"127.0.0.1", listening, "/wand/grip", "f", "0.25"});
    ASSERT_EQ(sender.wait(), 0) << sender.err();
    EXPECT_TRUE(dump.waitFor(" /rumble f 0.250000\n")) << dump.out() << dump.err();
    running.signal(SIGTERM);
    EXPECT_EQ(running.wait(), 0) << running.err();

    const std::size_t line = running.out().find('\n') + 1;
    const std::string grip = running.out().substr(0, line), rumble = running.out().substr(line);
    EXPECT_EQ(valueBehind(grip, "\"sensor\":"), "\"grip\"");
    EXPECT_EQ(valueBehind(rumble, "\"sensor\":"), "\"haptics\"");
    EXPECT_EQ(valueBehind(grip, "\"time\":"), valueBehind(rumble, "\"time\":"));
}
} // namespace
