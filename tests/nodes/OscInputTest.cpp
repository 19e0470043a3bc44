#include "tests/nodes/OscFixture.h"
#include "tests/support/LogCapture.h"
#include <algorithm>
#include <atomic>
#include <set>

namespace Trovio::Nodes {
namespace {

class OscInput : public OscFixture {};

TEST_F(OscInput, MessagesBecomeRecordsOfTheirTime)
{
    run("listen=127.0.0.1:0 in='/wand/position Vec3f, /wand/trigger Bool'");
    Probe<Vec3<float>> position("OSC/wand/position");
    Probe<bool> trigger("OSC/wand/trigger");
    const double before = Time::getCurrentTime().getSeconds();
    send(numbersMessage("/wand/position", 'f', {1, 2, 3}));
    const auto first = position.next();
    EXPECT_EQ(first.getValue(), (Vec3<float>(1, 2, 3)));
    EXPECT_GE(first.getTimeStamp().getSeconds(), before - 1e-3);

    send(bundleOf(toTimeTag(Time(1.6e9)),
                  {numbersMessage("/wand/position", 'd', {4, 5, 6}), numbersMessage("/wand/trigger", 'i', {1})}));
    const auto second = position.next();
    EXPECT_EQ(second.getValue(), (Vec3<float>(4, 5, 6)));
    EXPECT_EQ(second.getTimeStamp(), Time(1.6e9));
    EXPECT_TRUE(trigger.next().getValue());
    EXPECT_FALSE(state()._degraded);
}

TEST_F(OscInput, APatternReachesEverySlotThatItMeans)
{
    run("listen=127.0.0.1:0 in='/left/grip Float, /right/grip Float, /right/other Float'");
    Probe<float> left("OSC/left/grip"), right("OSC/right/grip");
    send(numbersMessage("/*/grip", 'f', {0.5}));
    send(numbersMessage("/[a-b]*/grip", 'f', {0.5}));
    EXPECT_EQ(left.next().getValue(), 0.5F);
    EXPECT_EQ(right.next().getValue(), 0.5F);
    awaitCount("in unknown", 1);
    EXPECT_EQ(_node->count("in values"), 2U);
}

TEST_F(OscInput, AMismatchIsReportedOnceForEachAddress)
{
    const LogCapture log;
    run("listen=127.0.0.1:0 in='/wand/position Vec3f, /cloud Vec3f[]'");
    for (int i = 0; i < 3; ++i) {
        send(numbersMessage("/wand/position", 'f', {1, 2}));
        send(numbersMessage("/cloud", 'd', {1, 2}));
    }
    awaitCount("in mismatched", 6);
    const auto texts = log.texts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "/wand/position: expected fff, got ff\n"), 1);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "/cloud: expected (fff)*, got dd\n"), 1);
}

TEST_F(OscInput, MalformedPacketsAreReportedOnceASecondWithTheirSender)
{
    const LogCapture log;
    run("listen=127.0.0.1:0 in='/a Float'");
    const auto reports = [&log] {
        std::vector<std::string> found;
        for (const std::string& text : log.texts())
            if (text.find("malformed") != std::string::npos)
                found.push_back(text);
        return found;
    };
    for (int i = 0; i < 3; ++i)
        send(raw("odd"));
    awaitCount("in malformed", 3);
    _clock.advance(1.0);
    send(raw("#bundle"));
    awaitCount("in malformed", 4);
    await([&] { return reports().size() == 2; });
    EXPECT_NE(reports()[0].find(peerAddress()), std::string::npos) << reports()[0];
    EXPECT_NE(reports()[1].find("2 more"), std::string::npos) << reports()[1];

    Probe<float> good("OSC/a");
    send(numbersMessage("/a", 'f', {1}));
    EXPECT_EQ(good.next().getValue(), 1.0F);
}

TEST_F(OscInput, EveryPacketIsReceivedOrCountedAsDropped)
{
    constexpr std::uint64_t sent = 20000;
    run("listen=127.0.0.1:0 buffer=4096 in='/a Float'");
    for (std::uint64_t i = 0; i < sent; ++i)
        send(numbersMessage("/a", 'f', {1}));
    await([&] { return _node->count("in packets") + _node->count("in dropped by the kernel") >= sent; });
    EXPECT_EQ(_node->count("in packets") + _node->count("in dropped by the kernel"), sent);
    awaitCount("in values", _node->count("in packets"));
}

class PacketCount final : public UdpPacketVisitor {
public:
    void receive(Bytes, const SocketAddress&, const Time&) override { ++_count; }
    std::uint64_t _count = 0;
};

TEST(UdpReceiver, KnowsExactlyWhatTheKernelDropped)
{
    UdpReceiver receiver;
    ASSERT_EQ(receiver.open(SocketAddress::forListening("127.0.0.1", 0), 4096), "");
    EXPECT_GE(receiver.getGrantedBuffer(), 4096 / 2);
    const UdpPeer peer;
    PacketCount received;
    std::uint64_t dropped = 0;
    for (int round = 1; round <= 2; ++round) {
        for (int i = 0; i < 500; ++i)
            peer.send(Packet(100), receiver.getAddresses()[0]);
        receiver.receive(received);
        dropped += receiver.takeDropped();
        EXPECT_GT(received._count, 0U);
        EXPECT_GT(dropped, 0U);
        EXPECT_EQ(received._count + dropped, 500U * static_cast<unsigned>(round));
    }
    EXPECT_EQ(receiver.takeDropped(), 0U);
}

TEST_F(OscInput, ATakenPortDegradesTheNodeUntilItIsFree)
{
    auto other = std::make_unique<UdpPeer>();
    run("in='/a Float' listen=" + other->getAddress().str());
    EXPECT_TRUE(state()._degraded);
    EXPECT_NE(state()._reason.find("taken by another program"), std::string::npos) << state()._reason;
    other.reset();
    await([&] {
        _clock.advance(0.5);
        return !state()._degraded;
    });
    Probe<float> probe("OSC/a");
    send(numbersMessage("/a", 'f', {2}));
    EXPECT_EQ(probe.next().getValue(), 2.0F);
}

TEST_F(OscInput, APortAloneMeansEveryLoopback)
{
    run("listen=0 in='/a Float'");
    std::set<std::uint16_t> ports;
    for (const SocketAddress& address : (*_node)->getListenAddresses()) {
        const std::string text = address.str();
        EXPECT_TRUE(text.starts_with("127.0.0.1:") || text.starts_with("[::1]:")) << text;
        ports.insert(address.getPort());
    }
    EXPECT_EQ(ports.size(), 1U);
    EXPECT_NE(*ports.begin(), 0);
}

TEST_F(OscInput, StopsInTheMiddleOfAFlood)
{
    for (int round = 0; round < 5; ++round) {
        run("listen=127.0.0.1:0 in='/a Float'");
        std::atomic<bool> enough{false};
        std::thread flood([&, to = listening()] {
            const Packet packet = numbersMessage("/a", 'f', {1});
            while (!enough)
                _peer.send(packet, to);
        });
        await([&] { return _node->count("in packets") > 100; });
        _node->stop();
        enough = true;
        flood.join();
    }
}

struct Refused {
    const char* _name;
    const char* _settings;
    const char* _mentioned;
};
class OscRefuses : public ::testing::TestWithParam<Refused> {};

TEST_P(OscRefuses, AndKeepsItsSlots)
{
    OscNode node(Clock::system());
    node.setType(OscNode::getEntry());
    node.setFieldValues("listen=0 in='/kept Float'");
    try {
        node.setFieldValues(GetParam()._settings);
        ADD_FAILURE() << "accepted";
    } catch (const InvalidFieldException& refusal) {
        EXPECT_NE(refusal.getMessage().find(GetParam()._mentioned), std::string::npos) << refusal.getMessage();
    }
    ASSERT_EQ(node.inspect()._slots.size(), 1U);
    EXPECT_EQ(node.inspect()._slots[0]._label, "kept");
}
INSTANTIATE_TEST_SUITE_P(
    Setting, OscRefuses,
    ::testing::Values(Refused{"Nothing", "", "listen"}, Refused{"InWithoutListen", "in='/a Float'", "listen"},
                      Refused{"ListenWithoutIn", "listen=9000", "in"},
                      Refused{"OutWithoutSend", "out='/a Float'", "send"},
                      Refused{"SendToPortZero", "send=localhost:0 out='/a Float'", "1 to 65535"},
                      Refused{"ListenOnAName", "listen=example.org:9000 in='/a Float'", "numeric"},
                      Refused{"UnknownType", "listen=9000 in='/a Vec3'", "Vec3f"},
                      Refused{"NoType", "listen=9000 in='/a'", "'/a'"},
                      Refused{"NoSlash", "listen=9000 in='a Float'", "'a Float'"},
                      Refused{"OnlySlash", "listen=9000 in='/ Float'", "'/ Float'"},
                      Refused{"Pattern", "listen=9000 in='/a* Float'", "'/a* Float'"},
                      Refused{"TypeFollowedByMore", "listen=9000 in='/a Float x'", "Float x"},
                      Refused{"EmptyEntry", "listen=9000 in='/a Float, , /b Float'", "entry ''"},
                      Refused{"CommaAtTheEnd", "listen=9000 in='/a Float,'", "comma"},
                      Refused{"Twice", "listen=9000 in='/a Float, /a Bool'", "twice"},
                      Refused{"InAndOut", "listen=9000 in='/a Float' send=9001 out='/a Float'", "both have /a"}),
    [](const auto& row) { return std::string(row.param._name); });

} // namespace
} // namespace Trovio::Nodes
