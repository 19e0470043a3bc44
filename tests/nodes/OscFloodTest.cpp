#include "tests/nodes/OscFixture.h"
#include "tests/support/Pace.h"

namespace Trovio::Nodes {
namespace {

using OscFlood = OscFixture;

const Packet malformed[] = {raw(""), raw("odd"), raw(std::string("/a\0\0,b\0\0\xff\xff\xff\xff", 12)),
                            raw(std::string("#bundle\0\0\0\0\0\0\0\0\1\0\0\0\x7f", 20)), Packet(65'000, 0xff)};

// OSTREL_FLOOD_PACKETS and OSTREL_FLOOD_RATE (a second) make it longer, and steady. The reader is always slower than a
// sender that does not wait, so that the kernel drops some.
TEST_F(OscFlood, EveryPacketIsReceivedOrCountedAsDroppedAndBadOnesChangeNothingElse)
{
    const long packets = fromEnvironment("OSTREL_FLOOD_PACKETS", 40'000);
    run("listen=127.0.0.1:0 in='/a Long' buffer=65536");
    Probe<long> received("OSC/a", 4);
    Pace pace(fromEnvironment("OSTREL_FLOOD_RATE", 0));
    std::uint64_t sent = 0;
    for (long i = 1; i <= packets; ++i, ++sent) {
        send(numbersMessage("/a", 'h', {static_cast<double>(i)}));
        pace.next();
        if (i % std::max(packets / 10'000, 1L) == 0) {
            send(malformed[sent % std::size(malformed)]);
            ++sent;
        }
    }
    _node->stop();
    const std::uint64_t arrived = _node->count("in packets"), bad = _node->count("in malformed");
    std::printf("%llu packets sent, %llu received, %llu of them malformed\n", static_cast<unsigned long long>(sent),
                static_cast<unsigned long long>(arrived), static_cast<unsigned long long>(bad));
    EXPECT_EQ(sent, arrived + _node->count("in dropped by the kernel") + _node->count("in left unread"));
    EXPECT_GT(bad, 0U);
    EXPECT_EQ(_node->count("in messages"), arrived - bad);
    EXPECT_EQ(_node->count("in values"), arrived - bad);
    EXPECT_EQ(_node->count("in mismatched") + _node->count("in unknown"), 0U);
    EXPECT_EQ(received.slot().getCounts().stored, arrived - bad);
    for (long last = 0; !received.slot().empty();) {
        const long value = received.next().getValue();
        EXPECT_GT(value, std::exchange(last, value));
        EXPECT_LE(value, packets);
    }
}

TEST_F(OscFlood, BadPacketsAgainstEntriesOfSeveralSlotsChangeOnlyCounters)
{
    run("listen=127.0.0.1:0 in='/pose s:Hmd Vec3f:position Rotation:rotation, /wand/* Vec3f, /imu _ Vec3f:gravity "
        "_[]'");
    Probe<Vec3<float>> position("OSC/pose/Hmd/position", 4);
    const Packet bad[] = {malformed[0],
                          malformed[1],
                          malformed[2],
                          malformed[3],
                          mixedMessage("/pose", "sff", "Hmd", 1., 2.),
                          mixedMessage("/pose", "sfff", "Other", 1., 2., 3.),
                          mixedMessage("/wand/left", "ss", "a", "b"),
                          mixedMessage("/wand/left/x", "fff", 1., 2., 3.),
                          mixedMessage("/imu", "ff", 1., 2.),
                          mixedMessage("/imu", "sTT", "a")};
    const std::size_t slots = (*_node)->inspect()._slots.size();
    std::uint64_t sent = 0;
    while (sent < 10'000) {
        for (const Packet& packet : bad)
            send(packet);
        awaitCount("in packets", sent += std::size(bad)); // so that the kernel drops none
    }
    send(mixedMessage("/pose", "sfffffff", "Hmd", 1., 2., 3., 0., 0., 0., 1.));
    awaitCount("in values", 2);
    EXPECT_EQ(_node->count("in malformed"), 4'000U);
    EXPECT_EQ(_node->count("in mismatched") + _node->count("in unknown"), 6'000U);
    EXPECT_EQ((*_node)->inspect()._slots.size(), slots);
    EXPECT_EQ(position.next().getValue(), (Vec3<float>{1, 2, 3}));
    EXPECT_TRUE(position.slot().empty());
    EXPECT_FALSE(state()._degraded);
}

} // namespace
} // namespace Trovio::Nodes
