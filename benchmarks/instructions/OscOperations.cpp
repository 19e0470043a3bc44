#include "benchmarks/instructions/Operation.h"
#include "nodes/osc/OscDispatcher.h"
#include "nodes/osc/packet/OscPacket.h"

#include <array>
#include <memory>

namespace Bench {

namespace {

using namespace Trovio::Nodes;

constexpr std::size_t countersInAll = 9;

/// What stands behind the socket of an OSC node.
class Listener {
public:
    Listener() : _dispatcher({{"/wand/position", "Vec3f"}, {"/wand/trigger", "Bool"}}, _in, {}) {}
    void receive(Bytes packet) { readOscPacket(packet, Trovio::Time(1e9), _dispatcher); }

private:
    std::array<Trovio::Counter, countersInAll> _counters{
        Trovio::Counter("packets"),    Trovio::Counter("messages"), Trovio::Counter("values"),
        Trovio::Counter("mismatched"), Trovio::Counter("unknown"),  Trovio::Counter("malformed"),
        Trovio::Counter("dropped"),    Trovio::Counter("unread"),   Trovio::Counter("without memory")};
    OscInCounters _in{_counters[0], _counters[1], _counters[2], _counters[3], _counters[4],
                      _counters[5], _counters[6], _counters[7], _counters[8]};
    OscDispatcher _dispatcher;
};

// 1.0, 2.0 and 3.0 as big-endian floats.
constexpr char packet[] = "/wand/position\0\0,fff\0\0\0\0\x3f\x80\0\0\x40\0\0\0\x40\x40\0\0";

} // namespace

void addOscOperations(Operations& operations)
{
    const auto listener = std::make_shared<Listener>();
    operations.push_back({"OSC packet to slot", [listener] {
                              listener->receive({reinterpret_cast<const std::uint8_t*>(packet), sizeof packet - 1});
                          }});
}

} // namespace Bench
