#include "tests/host/HostProcess.h"
#include "tests/nodes/OscMessages.h"
#include "tests/nodes/UdpPeer.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"

#include <csignal>

namespace {

using namespace Trovio::Nodes;

/// The real program, listening on a port of its own, and another one that sends.
class OscListening {
public:
    explicit OscListening(const winsize* terminal = nullptr)
        : _process("env", {"TERM=xterm", HOST_PROGRAM, "osc-listen", "127.0.0.1:0"}, terminal)
    {
        EXPECT_TRUE(_process.waitFor("ends it"));
        const std::string& said = terminal ? _process.out() : _process.err();
        const std::string place = "listening on 127.0.0.1:";
        _port = static_cast<std::uint16_t>(std::stoi(said.substr(said.find(place) + place.size())));
    }
    HostProcess* operator->() { return &_process; }
    std::string place() const { return "127.0.0.1:" + std::to_string(_port); }

    void send(const Packet& packet) const { _peer.send(packet, *SocketAddress::parse("127.0.0.1", _port)); }
    void sendPose() const { send(mixedMessage("/pose", "sfffffff", "it's a", 1., 2., 3., 0., 0., 0., 1.)); }

private:
    HostProcess _process;
    UdpPeer _peer;
    std::uint16_t _port = 0;
};

TEST(OscListen, ShowsWhatComesAndWritesTheNodeThatTakesIt)
{
    OscListening listening;
    listening.send(raw("odd"));
    listening.send(mixedMessage("/wand", "fff", 0.5, 2., 3.));
    EXPECT_TRUE(listening->waitFor("/wand (fff) 0.5 2 3; a guess: in='/wand Vec3f'\n"));
    listening.sendPose();
    EXPECT_TRUE(listening->waitFor("/pose (sfffffff) \"it's a\" 1 2 3 0 0 0 1; a guess: in='/pose s:\"it\\'s a\" "));
    for (int i = 0; i < 40; ++i)
        listening.send(mixedMessage("/count", "if", i, 1.));
    EXPECT_TRUE(listening->waitFor("in='/count _ Float'\n")) << "what goes on is no device";
    listening->signal(SIGINT);
    EXPECT_EQ(listening->wait(), 0);
    EXPECT_TRUE(says(listening->err(), "43 packets, 1 of them malformed\n"));
    const std::string line = listening->out().substr(listening->out().find("nodes = "));
    EXPECT_EQ(line, R"(nodes = [["OSC", "listen=127.0.0.1:0 in='/count _ Float, /pose s:\"it\\'s a\" )"
                    "Vec3f:position Rotation:rotation, /wand Vec3f'\"]]\n");
    const SceneOnDisk pasted("[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n" + line);
    HostProcess check(HOST_PROGRAM, {"check", pasted.path()});
    EXPECT_EQ(check.wait(), 0) << check.err();
}

TEST(OscListen, DrawsInPlaceOnATerminal)
{
    const winsize size{12, 60, 0, 0};
    OscListening listening(&size);
    listening.sendPose();
    EXPECT_TRUE(listening->waitFor("/pose"));
    EXPECT_TRUE(listening->waitFor("\x1b[3A\r\x1b[J")) << "two rows and the counts";
    listening->signal(SIGTERM);
    EXPECT_EQ(listening->wait(), 0);
    EXPECT_TRUE(says(listening->out(), "nodes = [["));
}

TEST(OscListen, EndsWithTheCodeOfWhatHappened)
{
    OscListening listening;
    const struct {
        std::vector<std::string> _arguments;
        int _code;
        std::string _says;
    } rows[] = {{{"localhost:x"}, 2, "'localhost:x' is no place to listen on; allowed: a port"},
                {{"example.org:9000"}, 2, "no place"},
                {{listening.place()}, 1, "the port is taken by another program"},
                {{"127.0.0.1:0", "--seconds", "0.01"}, 3, "0 packets"}};
    for (const auto& [arguments, code, text] : rows) {
        std::vector<std::string> all{"osc-listen"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        HostProcess other(HOST_PROGRAM, all);
        EXPECT_EQ(other.wait(), code) << text;
        EXPECT_TRUE(says(other.err(), text));
    }
    listening->stopReading();
    EXPECT_EQ(listening->wait(), 0) << "nobody reads any more";
}

} // namespace
