#include "nodes/osc/OscInLane.h"

#include "nodes/osc/packet/OscValue.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"

namespace Trovio::Nodes {

namespace {

template <class T>
class TypedInLane final : public OscInLane {
public:
    explicit TypedInLane(const std::string& name) : _slot(name) {}

    BasicOutSlot& getSlot() override { return _slot; }
    std::string getExpected() const override { return OscValue<T>::expected(); }

    bool deliver(const OscMessage& message) override
    {
        Data<T> record(T(), message._stamp);
        OscArguments arguments = message.getArguments();
        if (!OscValue<T>::read(arguments, record.getValue()))
            return false;
        _slot.push(record);
        return true;
    }

private:
    OutSlot<T> _slot;
};

} // namespace

std::unique_ptr<OscInLane> OscInLane::create(const OscAddress& address)
{
    std::unique_ptr<OscInLane> lane;
    withSlotType(address._typeName,
                 [&]<class T>(TypeTag<T>) { lane = std::make_unique<TypedInLane<T>>(address.getLabel()); });
    return lane;
}

} // namespace Trovio::Nodes
