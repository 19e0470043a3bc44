#include "tests/nodes/OscFixture.h"
#include "tests/support/AllocationCount.h"

namespace Trovio::Nodes {
namespace {

TEST_F(OscFixture, ReceivingAllocatesNothingAfterTheFirstPackets)
{
    run("listen=127.0.0.1:0 in='/position Vec3f, /trigger Bool, /cloud Vec3f[], /strings String[]'");
    Probe<Vec3<float>> position("OSC/position", 4);
    Probe<SharedVector<Vec3<float>>> cloud("OSC/cloud", 4);
    const SocketAddress to = listening();
    const Packet packet = bundleOf(
        5, {numbersMessage("/position", 'f', {1, 2, 3}), numbersMessage("/cloud", 'd', std::vector<double>(300, 0.5)),
            numbersMessage("/tr*", 'i', {1}), raw(std::string("/strings\0\0\0\0,s\0\0a\0\0\0", 20))});
    const auto exchange = [&] {
        _peer.send(packet, to);
        position.next();
        cloud.next();
    };
    for (int i = 0; i < 20; ++i)
        exchange();
    const AllocationCount count;
    for (int i = 0; i < 500; ++i)
        exchange();
    EXPECT_EQ(count.since(), 0U);
    EXPECT_EQ(_node->count("in mismatched"), 0U);
}

} // namespace
} // namespace Trovio::Nodes
