#include "tests/endtoend/Programs.h"
#include "tests/nodes/UdpPeer.h"

#include <array>
#include <bit>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using Place = std::array<float, 3>;

/// The OSC message /wand with three floats.
std::vector<std::uint8_t> wandAt(const Place& place)
{
    const std::string head("/wand\0\0\0,fff\0\0\0\0", 16);
    std::vector<std::uint8_t> packet(head.begin(), head.end());
    for (const float coordinate : place)
        for (const unsigned shift : {24U, 16U, 8U, 0U})
            packet.push_back(static_cast<std::uint8_t>(std::bit_cast<std::uint32_t>(coordinate) >> shift));
    return packet;
}

/// `calibrate` on a terminal, with a device that lies still at each place and sends on.
class Calibration {
public:
    /// False if the program ended before it wrote `next`.
    bool measure(const Place& seen, const std::string& next)
    {
        constexpr int longest = 3000;
        if (write(_program.terminal(), "\r", 1) != 1)
            return false;
        for (int sent = 0; sent < longest && !_program.waitFor(next, 10); ++sent)
            _device.send(wandAt(seen), *Trovio::Nodes::SocketAddress::parse("127.0.0.1", _port));
        return _program.waitFor(next, 0);
    }
    HostProcess* operator->() { return &_program; }

private:
    const std::uint16_t _port = Trovio::Nodes::UdpPeer().getPort(); // free again at once
    const SceneOnDisk _scene{"[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nroutes = [[\"OSC/wand\", \"Wand\"]]\n"
                             "nodes = [[\"OSC\", \"listen=127.0.0.1:" +
                             std::to_string(_port) +
                             " in='/wand Vec3f'\"]]\n"
                             "[[sensor]]\nname = \"wand\"\ntype = \"SFVec3f\"\nlabel = \"Wand\"\n"};
    const SceneOnDisk _points{"0,0,0\n2,0,0\n0,2,0\n0,0,2\n", "points.csv"};
    const winsize _size{24, 200, 0, 0};
    HostProcess _program{host, {"calibrate", _scene.path(), "Wand", _points.path()}, &_size};
    const Trovio::Nodes::UdpPeer _device;
};

TEST(CalibrateProgram, LeadsThroughThePointsAndPrintsTheFilter)
{
    Calibration calibration;
    ASSERT_TRUE(calibration->waitFor("1 of 4: ")) << calibration->out();
    EXPECT_TRUE(calibration.measure({1, 0, 0}, "2 of 4: "));
    EXPECT_TRUE(calibration.measure({2, 0, 0}, "3 of 4: "));
    EXPECT_TRUE(calibration.measure({1, 1, 0}, "4 of 4: "));
    EXPECT_TRUE(calibration.measure({1, 0, 1}, "Align rotation='0 0 0 1' translation='-2 0 0' scale=2\r\n"));
    EXPECT_EQ(calibration->wait(), 0) << calibration->out();
}
} // namespace
