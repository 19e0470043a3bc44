#include "benchmarks/instructions/Operation.h"
#include "nodes/filters/OnChange.h"
#include "nodes/filters/OneEuro.h"
#include "nodes/filters/Scale.h"
#include "nodes/filters/convert/Align.h"
#include "nodes/filters/convert/Axes.h"
#include "nodes/filters/convert/Convert.h"
#include "nodes/filters/convert/Join.h"
#include "nodes/filters/convert/Split.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"

namespace Bench {

namespace {

using namespace Trovio;
using namespace Trovio::Nodes;

/// A filter that stands nowhere, whose lane is worked by hand, with nobody behind its out-slots.
template <class NodeT>
class HandWorked {
public:
    explicit HandWorked(const std::string& settings) : _lane(_node.createLane(settingsOf(settings))) {}

    template <class T>
    void push(const T& value, std::size_t slot = 0)
    {
        static_cast<InSlot<T>&>(*_lane->getInSlots().at(slot)).push(Data<T>(value, Time(_stamp)));
    }
    void nextStamp() { _stamp += 0.01; }
    void relayNext() { _lane->relayNext(); }

private:
    static Settings settingsOf(const std::string& text)
    {
        const auto rows = NodeT::getEntry()._settings;
        return Settings({rows.begin(), rows.end()}, text);
    }

    NodeT _node{Clock::system()};
    const std::unique_ptr<Lane> _lane;
    double _stamp = 1e9;
};

/// One record through a filter of one in-slot.
template <class NodeT, class T>
void add(Operations& operations, const char* name, const std::string& settings, const T& value)
{
    const auto filter = std::make_shared<HandWorked<NodeT>>(settings);
    operations.push_back({name, [filter] { filter->relayNext(); },
                          [filter, value] {
                              filter->nextStamp();
                              filter->push(value);
                          }});
}

} // namespace

void addFilterOperations(Operations& operations)
{
    const Vec3<float> position(1, 2, 3);
    const Rotation rotation(0.5F, 0.5F, 0.5F, 0.5F);
    add<Scale>(operations, "filter Scale, Vec3f", "type=Vec3f gain=2", position);
    add<Axes>(operations, "filter Axes, Vec3f", "type=Vec3f axes=xZy unit=cm", position);
    add<OneEuro>(operations, "filter OneEuro, Vec3f", "type=Vec3f", position);
    add<Align>(operations, "filter Align, Vec3f", "type=Vec3f rotation='0 0 1 1' translation='1 2 3'", position);
    add<Align>(operations, "filter Align, Rotation", "type=Rotation rotation='0 0 1 1'", rotation);
    add<Align>(operations, "filter Align, Matrix4f", "type=Matrix4f rotation='0 0 1 1'", Matrix4<float>());
    add<Convert>(operations, "filter Convert, Float to Bool", "type=Float to=Bool", 0.7F);
    add<Convert>(operations, "filter Convert, Vec3f to Rotation", "type=Vec3f to=Rotation order=zxy unit=deg",
                 position);
    add<Convert>(operations, "filter Convert, Rotation to Vec3f", "type=Rotation to=Vec3f order=zxy", rotation);
    add<OnChange>(operations, "filter OnChange, Vec3f that stays", "type=Vec3f", position);
    add<Split>(operations, "filter Split, Vec3f", "type=Vec3f", position);

    const auto join = std::make_shared<HandWorked<Join>>("type=Matrix4f parts=pose");
    operations.push_back({"filter Join, Vec3f and Rotation",
                          [join] {
                              join->relayNext();
                              join->relayNext();
                          },
                          [join, position, rotation] {
                              join->nextStamp();
                              join->push(position, 0);
                              join->push(rotation, 1);
                          }});
}

} // namespace Bench
