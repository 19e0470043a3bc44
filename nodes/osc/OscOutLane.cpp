#include "nodes/osc/OscOutLane.h"

#include "nodes/osc/packet/OscValue.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/SlotTypes.h"
#include <atomic>

namespace Trovio::Nodes {

namespace {

template <class T>
class TypedOutLane final : public OscOutLane, SlotListener {
public:
    TypedOutLane(const OscAddress& address, unsigned capacity, std::function<void()> arrived)
        : _address(address._address), _arrived(std::move(arrived)), _slot(address.getLabel(), capacity)
    {
        _slot.setListener(this);
    }

    BasicInSlot& getSlot() override { return _slot; }

    std::optional<Time> take(OscWriter& writer) override
    {
        if (!_waiting.load())
            return std::nullopt;
        _waiting = false; // before the look: a record that comes now sets it again
        if (_slot.empty())
            return std::nullopt;
        _waiting = true;
        const Data<T> record = _slot.pop();
        writer.begin(_address);
        OscValue<T>::write(writer, record.getValue());
        return record.getTimeStamp();
    }

private:
    void dataArrived(Slot&) override
    {
        _waiting = true;
        _arrived();
    }

    const std::string _address;
    const std::function<void()> _arrived;
    std::atomic<bool> _waiting{false}; // spares the lock of the many slots that have nothing
    BufferedInSlot<T> _slot;
};

} // namespace

std::unique_ptr<OscOutLane> OscOutLane::create(const OscAddress& address, unsigned capacity,
                                               std::function<void()> arrived)
{
    std::unique_ptr<OscOutLane> lane;
    withSlotType(address._typeName, [&]<class T>(TypeTag<T>) {
        lane = std::make_unique<TypedOutLane<T>>(address, capacity, std::move(arrived));
    });
    return lane;
}

} // namespace Trovio::Nodes
