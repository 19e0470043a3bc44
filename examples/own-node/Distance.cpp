// A node type of your own: how far a position is from the origin, and whether that is near.
#include "trovio/BufferedInSlot.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"
#include <cmath>
#include <thread>

namespace {

using namespace Trovio;
using Position = Vec3<float>;

// What a user may set. The parser checks against this table, and "ostrel-host nodes" prints it.
constexpr Setting settings[] = {
    Setting::number("near", "1", 0, 1000, "distance in metres up to which a position counts as near"),
};

class Distance final : public Node {
public:
    Distance() : _received(addCounter("received"))
    {
        declareRelay();
        addInSlot("position", &_position);
        addOutSlot("distance", &_distance);
        addOutSlot("near", &_near);
    }

private:
    void configure(const Settings& values) override { _limit = static_cast<float>(values.number("near")); }

    void start() override
    {
        _thread = std::thread([this] { run(); });
    }

    // Releases the thread from its wait. Nothing is pushed once this has returned.
    void stop() override
    {
        _position.interrupt();
        _thread.join();
    }

    // Whoever pushes into _position holds locks, so the answer comes from a thread of our own.
    void run()
    {
        try {
            for (;;)
                answer(_position.pop());
        } catch (const InterruptedException&) {
        }
    }

    // The answers carry the time at which the position was measured.
    void answer(const Data<Position>& record)
    {
        const Position& position = record.getValue();
        const float distance = std::hypot(position[0], position[1], position[2]);
        _received.add();
        _distance.push(Data<float>(distance, record.getTimeStamp()));
        _near.push(Data<bool>(distance <= _limit, record.getTimeStamp()));
    }

    Counter& _received;
    float _limit = 0.0F; // metres
    BufferedInSlot<Position> _position{"position", 256};
    OutSlot<float> _distance{"distance"};
    OutSlot<bool> _near{"near"};
    std::thread _thread;
};

const NodeTypeEntry types[] = {{"Distance", "how far a position is from the origin", settings,
                                []() -> std::unique_ptr<Node> { return std::make_unique<Distance>(); }}};
} // namespace

// The module's only export.
const Trovio::NodeModule* trovioNodeModule()
{
    static const NodeModule module{NodeModule::Version, types};
    return &module;
}
