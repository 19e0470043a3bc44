#include "nodes/shared/SocketAddress.h"
#include "tests/host/HostProcess.h"
#include "tests/host/SceneOnDisk.h"
#include "tests/nodes/UdpPeer.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

using Trovio::Nodes::SocketAddress;
using Trovio::Nodes::UdpPeer;

namespace {

const std::string host = HOST_PROGRAM;

/// A scene with an OSC node that receives numbers and positions at `port`, 0 for any.
std::string oscScene(const std::string& port)
{
    return "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"
           "nodes = [[\"OSC\", \"listen=127.0.0.1:" +
           port +
           " in='/count Long, /wand Vec3f'\"]]\n"
           "routes = [[\"OSC/count\", \"Count\"], [\"OSC/wand\", \"Wand\"]]\n"
           "[[sensor]]\nname = \"count\"\ntype = \"SFInt32\"\nlabel = \"Count\"\nbuffer = 4096\n"
           "[[sensor]]\nname = \"wand\"\ntype = \"SFVec3f\"\nlabel = \"Wand\"\nvalue = [0, 1.6, 0]\n";
}

/// The number behind `text` in what the program said; -1 if there is none.
long numberBehind(const std::string& said, const std::string& text)
{
    const std::size_t at = said.find(text);
    return at == std::string::npos ? -1 : std::atol(said.c_str() + at + text.size());
}

/// A running host that listens; where is known once it said so.
class ListeningHost {
public:
    explicit ListeningHost(std::vector<std::string> options = {})
        : _scene(oscScene("0")), _process(host, arguments(std::move(options)))
    {
        _process.waitFor(" with a receive buffer");
        _port = numberBehind(_process.err(), "listening on 127.0.0.1:");
        _process.waitFor("node 'Context/OSC'");
    }
    HostProcess* operator->() { return &_process; }
    long port() const { return _port; }

private:
    std::vector<std::string> arguments(std::vector<std::string> options) const
    {
        options.insert(options.begin(), {"run", _scene.path(), "--format", "json"});
        return options;
    }
    const SceneOnDisk _scene;
    HostProcess _process;
    long _port = -1;
};

TEST(HostProgram, ShowsWhatAnotherProgramSends)
{
    ListeningHost running;
    HostProcess sender("oscsend", {"127.0.0.1", std::to_string(running.port()), "/wand", "fff", "0.5", "1.5", "-2"});
    ASSERT_EQ(sender.wait(), 0) << sender.err();
    EXPECT_TRUE(
        running->waitFor("\"sensor\":\"wand\",\"label\":\"Wand\",\"type\":\"SFVec3f\",\"value\":[0.5,1.5,-2.0]}\n"));
    running->signal(SIGINT);
    EXPECT_EQ(running->wait(), 0) << running->err();
    EXPECT_NE(running->err().find("sensor 'wand' (label 'Wand') SFVec3f: 1 values, last 0.5 1.5 -2"),
              std::string::npos);
}

/// Sends numbers in OSC messages, as fast as it can.
class NumberSender {
public:
    explicit NumberSender(long port) : _to(*SocketAddress::parse("127.0.0.1", static_cast<std::uint16_t>(port))) {}

    void send(std::uint32_t number)
    {
        std::vector<std::uint8_t> packet = {'/', 'c', 'o', 'u', 'n', 't', 0, 0, ',', 'i', 0, 0};
        for (int shift = 24; shift >= 0; shift -= 8)
            packet.push_back(static_cast<std::uint8_t>(number >> shift));
        _peer.send(packet, _to);
        ++_sent;
    }
    long sent() const { return _sent; }

private:
    const UdpPeer _peer;
    const SocketAddress _to;
    long _sent = 0;
};

// What the kernel dropped, it says; behind the socket nothing is lost that is not counted.
TEST(HostProgram, AccountsForEveryMessage)
{
    constexpr std::uint32_t burst = 20'000;
    constexpr int patience = 1000; // milliseconds until a lost last message is sent once more
    ListeningHost running;
    NumberSender sender(running.port());
    std::thread sending([&sender] {
        for (std::uint32_t i = 1; i <= burst; ++i)
            sender.send(i);
    });
    bool arrived = running->waitFor("\"value\":" + std::to_string(burst) + "}", patience);
    sending.join();
    for (std::uint32_t last = burst + 1; !arrived && last < burst + 60; ++last) {
        sender.send(last);
        arrived = running->waitFor("\"value\":" + std::to_string(last) + "}", patience);
    }
    ASSERT_TRUE(arrived);
    running->signal(SIGTERM);
    ASSERT_EQ(running->wait(), 0) << running->err();

    const std::string& said = running->err();
    const std::string count = said.substr(said.find("sensor 'count' (label 'Count') SFInt32: "));
    const long received = numberBehind(said, "in packets ");
    EXPECT_EQ(received + numberBehind(said, "in dropped by the kernel "), sender.sent()) << said;
    EXPECT_EQ(numberBehind(count, "in-slot: "), received);
    EXPECT_EQ(numberBehind(count, " stored, ") + numberBehind(count, " overwritten, "), received) << count;
    EXPECT_EQ(std::ranges::count(running->out(), '\n'), numberBehind(count, " overwritten, ") + 1) << "and the counts";
    const std::string counts = running->out().substr(running->out().find("{\"counts\":"));
    EXPECT_EQ(numberBehind(counts, "\"slot\":\"Context/Count\",\"direction\":\"in\",\"type\":\"Long\",\"stored\":"),
              received);
    EXPECT_EQ(
        numberBehind(counts, "\"slot\":\"Context/OSC/count\",\"direction\":\"out\",\"type\":\"Long\",\"written\":"),
        received);
}

TEST(HostProgram, EndsAtOnceWithTheSecondSignal)
{
    ListeningHost running;
    // Both are pending when it goes on, so neither can come after the end.
    for (const int number : {SIGSTOP, SIGINT, SIGTERM, SIGCONT})
        running->signal(number);
    const int code = running->wait();
    EXPECT_TRUE(code == 128 + SIGINT || code == 128 + SIGTERM) << code;
}

TEST(HostProgram, GoesOnWithoutAPortThatIsTaken)
{
    const UdpPeer taken;
    const SceneOnDisk scene(oscScene(std::to_string(taken.getPort())));
    HostProcess running(host, {"run", scene.path(), "--frames", "3"});
    EXPECT_EQ(running.wait(), 0);
    EXPECT_NE(running.err().find("node 'Context/OSC' (OSC): degraded, cannot listen on 127.0.0.1:"), std::string::npos)
        << running.err();
}

TEST(HostProgram, EndsWhenNobodyReadsItsValues)
{
    const SceneOnDisk scene("[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[\"Generator\", \"\"]]\n"
                            "routes = [[\"Generator/value\", \"Wave\"]]\n"
                            "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n");
    HostProcess running(host, {"run", scene.path(), "--format", "json"});
    ASSERT_TRUE(running.waitFor("\"sensor\":\"wave\""));
    running.stopReading();
    EXPECT_EQ(running.wait(), 1);
    EXPECT_NE(running.err().find("standard output cannot be written to"), std::string::npos);
}

TEST(HostProgram, RunsTheExamples)
{
    const std::string folder = EXAMPLES_FOLDER;
    HostProcess check(host, {"check", folder + "/first-light.toml", folder + "/devices.toml"});
    EXPECT_EQ(check.wait(), 0);
    EXPECT_EQ(check.err(), ""); // not even a note

    HostProcess maker(folder + "/make-large-scene", {"2000"});
    ASSERT_EQ(maker.wait(), 0) << maker.err();
    const SceneOnDisk large(maker.out());
    HostProcess running(host, {"run", large.path(), "--frames", "2"});
    EXPECT_EQ(running.wait(), 0);
    EXPECT_NE(running.err().find("and 1980 more sensors without connection\n"), std::string::npos) << running.err();
    EXPECT_NE(running.err().find("and 1980 more routes\n"), std::string::npos) << running.err();
}

// A run warns of these and goes on, so they are no errors here either.
TEST(HostProgram, ChecksWithNotes)
{
    const SceneOnDisk scene("[[handler]]\nkind = \"Trovio\"\nname = \"a\"\nnodes = [[\"Nothing\"]]\n"
                            "[[handler]]\nkind = \"Trovio\"\nname = \"b\"\nnodes = [[\"Generator\", \"rate=x\"]]\n"
                            "[[handler]]\nkind = \"Trovia\"\nname = \"c\"\n"
                            "[[sensor]]\nname = \"s\"\ntype = \"SFBool\"\n");
    HostProcess check(host, {"check", scene.path()});
    EXPECT_EQ(check.wait(), 0);
    EXPECT_NE(check.out().find(": good: sensors 1, handlers 3, routes 0, links 0, notes 5\n"), std::string::npos);
    for (const char* note : {":4:11: note: node type 'Nothing' is not known", ":8:24: note: ",
                             ":10:8: note: unknown handler kind 'Trovia'; allowed: Trovio, OT, ORDAN, TORVA; nearest",
                             ":13:8: note: sensor 's' has no label",
                             ": note: the scene has 2 Trovio handlers; each of them serves every sensor"})
        EXPECT_NE(check.err().find(note), std::string::npos) << note << "\n" << check.err();
}

TEST(HostProgram, SaysWithItsExitCodeHowItWent)
{
    const SceneOnDisk bad("[[sensor]]\nnam = \"a\"\n");
    struct Row {
        std::vector<std::string> _arguments;
        int _code;
        const char* _says;
    };
    const Row rows[] = {
        {{"--help"}, 0, "ostrel-host [OPTIONS] SUBCOMMAND"},
        {{"run", "--help"}, 0, "--format"},
        {{"version"}, 0, "ostrel-host "},
        {{"types", "MFVec3f"}, 0, "Vec3f[]"},
        {{"nodes", "Generator"}, 0, "default: sine"},
        {{}, 2, "subcommand is required"},
        {{"rum"}, 2, "nearest: 'run'"},
        {{"run", "s.toml", "--rate", "nan"}, 2, "'nan' is not a rate"},
        {{"run", "s.toml", "--format", "jsn"}, 2, "nearest: 'json'"},
        {{"run", bad.path()}, 2, ":2:1: unknown key 'nam' in [[sensor]]"},
        {{"check", "no/such.toml"}, 2, "cannot be opened"},
        {{"types", "SFVec9"}, 3, "no field type is called 'SFVec9'"},
        {{"nodes", "Generater"}, 3, "nearest: 'Generator'"},
    };
    for (const Row& row : rows) {
        HostProcess process(host, row._arguments);
        EXPECT_EQ(process.wait(), row._code) << row._says;
        EXPECT_NE((process.out() + process.err()).find(row._says), std::string::npos) << process.out() << process.err();
    }
}
} // namespace
