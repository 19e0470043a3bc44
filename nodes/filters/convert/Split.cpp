#include "nodes/filters/convert/Split.h"

#include "nodes/filters/ElementWise.h"
#include "nodes/filters/convert/Parts.h"
#include "nodes/relay/TypeChoices.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"
#include <deque>

namespace Trovio::Nodes {

namespace {

constexpr RejectionCauses causes{
    "with a value that is not finite (NaN, infinite), or a matrix that does more than turn and move", usualCauses[1],
    usualCauses[2]};

template <Composite T>
class ComponentOuts {
public:
    using Value = T;

    ComponentOuts()
    {
        for (std::size_t i = 0; i < Components<T>::Count; ++i)
            _outs.emplace_back(componentName<T>(i));
    }

    std::vector<BasicOutSlot*> slots()
    {
        std::vector<BasicOutSlot*> all;
        for (auto& out : _outs)
            all.push_back(&out);
        return all;
    }

    bool push(const T& value, const Time& stamp)
    {
        for (std::size_t i = 0; i < Components<T>::Count; ++i)
            _outs[i].push({Components<T>::get(value, i), stamp});
        return true;
    }

private:
    std::deque<OutSlot<typename Components<T>::Component>> _outs; // never move: routes refer to them
};

template <PoseMatrix M>
class PoseOuts {
public:
    using Value = M;

    std::vector<BasicOutSlot*> slots() { return {&_position, &_rotation}; }

    /// False, and nothing is sent, where the matrix is no pose.
    bool push(const M& matrix, const Time& stamp)
    {
        Pose<M> pose;
        if (!readPose(matrix, pose))
            return false;
        _position.push({pose._position, stamp});
        _rotation.push({pose._rotation.toRotation(), stamp});
        return true;
    }

private:
    OutSlot<typename Pose<M>::Position> _position{"position"};
    OutSlot<Rotation> _rotation{"rotation"};
};

template <class Outs>
class SplitLane final : public Lane {
public:
    explicit SplitLane(unsigned capacity) : _in("in", capacity) {}

    std::vector<BasicInSlot*> getInSlots() override { return {&_in}; }
    std::vector<BasicOutSlot*> getOutSlots() override { return _outs.slots(); }

    std::optional<Outcome> relayNext() override
    {
        if (_in.empty())
            return std::nullopt;
        const auto record = _in.pop();
        const bool sent = isUsable(record.getValue()) && _outs.push(record.getValue(), record.getTimeStamp());
        return sent ? Outcome::Sent : Outcome::BadValue;
    }

private:
    BufferedInSlot<typename Outs::Value> _in;
    Outs _outs;
};

std::unique_ptr<Lane> createSplitLane(const Settings& settings, unsigned queue)
{
    const bool asPose = readAsPose(settings);
    std::unique_ptr<Lane> lane;
    withSlotType(settings.text("type"), [&]<class T>(TypeTag<T>) {
        if constexpr (PoseMatrix<T>)
            if (asPose) {
                lane = std::make_unique<SplitLane<PoseOuts<T>>>(queue);
                return;
            }
        if constexpr (Composite<T>)
            lane = std::make_unique<SplitLane<ComponentOuts<T>>>(queue);
    });
    return lane;
}

} // namespace

Split::Split(Clock& clock) : FilterNode(clock, createSplitLane, causes) {}

const NodeTypeEntry& Split::getEntry()
{
    static const RelayTable table(compositeTypes(), "Vec3f", {partsSetting()}, "slot type of 'in'");
    static const NodeTypeEntry entry{"Split", "sends each part of a value through a slot of its own", table.rows(),
                                     createOnSystemClock<Split>};
    return entry;
}

} // namespace Trovio::Nodes
