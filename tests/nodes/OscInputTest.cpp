#include "nodes/osc/OscUnknownAddresses.h"
#include "nodes/osc/address/OscPattern.h"
#include "tests/nodes/OscFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include <algorithm>
#include <atomic>
#include <set>

namespace Trovio::Nodes {
namespace {

class OscInput : public OscFixture {};

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

TEST_F(OscInput, AddressesWithoutASlotAreNamedOnceWithTheEntryThatWouldTakeThem)
{
    const LogCapture log;
    run("listen=127.0.0.1:0 in='/my/device Vec3f'");
    const std::string stretched = "/" + std::string(1000, 'x');
    for (int round = 0; round < 2; ++round) {
        send(numbersMessage("/my/devise", 'f', {1, 2, 3}));
        send(numbersMessage("/nobody/*", 'f', {}));
        send(numbersMessage(stretched, 'i', std::vector<double>(500, 1)));
        for (int i = 0; i < 100; ++i)
            send(numbersMessage("/other" + std::to_string(i), 'i', {1}));
    }
    awaitCount("in unknown", 206);
    const auto texts = log.texts();
    const std::pair<std::string, std::size_t> rows[] = {
        {"OSC: no slot for /my/devise, which comes with (fff); a guess: in='/my/devise Vec3f' would take it; the "
         "nearest ",
         1},
        {"no slot for /nobody/*, which comes with no arguments; the pattern fits no address", 1},
        {"no slot for " + stretched.substr(0, MaxOscAddress) + ",", 1},
        {"no slot for", OscUnknownAddresses::MaxNamed},
        {"further ones are only counted", 1}};
    for (const auto& [part, times] : rows) {
        const auto has = [&part = part](const std::string& line) { return line.find(part) != line.npos; };
        EXPECT_EQ(std::ranges::count_if(texts, has), static_cast<std::ptrdiff_t>(times)) << part;
    }
}

TEST_F(OscInput, RemarksSayWhatCameInsteadOfValues)
{
    const auto remark = [this](std::size_t slot) { return (*_node)->getRemarks().at(slot)._text; };
    run("listen=127.0.0.1:0 in='/my/device Vec3f, /cloud Vec3f[], /well Float'");
    const std::string where = "listens on " + listening().str() + ", this machine only; ";
    EXPECT_EQ(remark(0), where + "no packets came");
    send(numbersMessage("/my/devise", 'f', {1, 2, 3}));
    send(numbersMessage("/x", 'f', {}));
    send(numbersMessage("/x", 'f', {}));
    send(raw("odd"));
    send(numbersMessage("/cloud", 'd', {1}));
    send(numbersMessage("/well", 'f', {1}));
    awaitCount("in values", 1);
    const std::string lost = "; 1 packet malformed, the last: size 3 is no multiple of 4";
    EXPECT_EQ(remark(0), where +
                             "6 packets came, none for /my/device, 1 for /my/devise (fff), 2 for /x with no "
                             "arguments" +
                             lost);
    EXPECT_EQ(remark(1), where + "6 packets came, 1 came with (d), wanted (fff)*" + lost);
    EXPECT_EQ((*_node)->getRemarks().size(), 2U) << "of a slot that is well nothing need be said";

    send(numbersMessage("/well", 'f', {1, 2}));
    send(numbersMessage("/well", 'f', {1, 2, 3}));
    awaitCount("in mismatched", 3);
    _node->stop();
    EXPECT_EQ(remark(2), "2 came with (fff) or others, wanted (f)");
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
    EXPECT_TRUE(says(reports()[0], peerAddress()));
    EXPECT_TRUE(says(reports()[1], "2 more"));

    Probe<float> good("OSC/a");
    send(numbersMessage("/a", 'f', {1}));
    EXPECT_EQ(good.next().getValue(), 1.0F);
}

TEST(UdpReceiver, KnowsExactlyWhatTheKernelDropped)
{
    struct PacketCount final : UdpPacketVisitor {
        bool receive(Bytes, const SocketAddress&, const Time&) override { return ++_count > 0; }
        std::uint64_t _count = 0;
    } received;
    UdpReceiver receiver;
    ASSERT_EQ(receiver.open(SocketAddress::forListening("127.0.0.1", 0), 4096), "");
    const UdpPeer peer;
    std::uint64_t dropped = 0;
    for (unsigned sent = 500; sent <= 1000; sent += 500) {
        for (int i = 0; i < 500; ++i)
            peer.send(Packet(100), receiver.getAddresses()[0]);
        receiver.receive(received);
        dropped += receiver.takeDropped();
        EXPECT_GT(dropped, 0U);
        EXPECT_EQ(received._count + dropped, sent);
    }
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

TEST(OscSettings, AreRefusedWithTheirReasonAndTheSlotsKept)
{
    expectRefused(std::make_unique<OscNode>(Clock::system()), "listen=0 in='/kept Float'",
                  {{"", "listen"},
                   {"in='/a Float'", "listen"},
                   {"listen=9000", "in"},
                   {"out='/a Float'", "send"},
                   {"send=localhost:0 out='/a Float'", "1 to 65535"},
                   {"listen=example.org:9000 in='/a Float'", "numeric"},
                   {"listen=9000 in='/a Vec3'", "Vec3f"},
                   {"listen=9000 in='/a'", "'/a'"},
                   {"listen=9000 in='a Float'", "'a Float'"},
                   {"listen=9000 in='/ Float'", "'/ Float'"},
                   {"listen=9000 in='/a? Float'", "'/a? Float'"},
                   {"listen=9000 in='/a Float x'", "Float x"},
                   {"listen=9000 in='/a Float, , /b Float'", "entry ''"},
                   {"listen=9000 in='/a Float,'", "comma"},
                   {"listen=9000 in='/a Float, /a Bool'", "duplicate name '/a'"},
                   {"listen=9000 in='/a Float' send=9001 out='/a Float'", "both have /a"}});
}

TEST(OscSettings, AddressesAndTheirQueuesEndAtTheirLimits)
{
    const auto settings = [](int addresses, int queue) {
        std::string list;
        for (int i = 0; i < addresses; ++i)
            list += (i == 0 ? "/a" : ",/a") + std::to_string(i) + " Float";
        return "send=9001 queue=" + std::to_string(queue) + " out='" + list + "'";
    };
    expectRefused(std::make_unique<OscNode>(Clock::system()), settings(1024, 1024),
                  {{settings(1025, 1).c_str(), "allowed: up to 1024 entries"},
                   {settings(1024, 1025).c_str(), "value '1025' is not allowed; allowed: up to 1024 with 1024 slots"}});
}

} // namespace
} // namespace Trovio::Nodes
