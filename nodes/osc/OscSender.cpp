#include "nodes/osc/OscSender.h"

#include "nodes/osc/packet/OscValue.h"
#include "nodes/shared/SendQueue.h"
#include "trovio/SlotTypes.h"

namespace Trovio::Nodes {

namespace {

template <class T>
class TypedSender final : public OscSender {
public:
    TypedSender(const OscAddress& address, unsigned capacity, std::function<void()> arrived)
        : _address(address._address), _queue(address.getLabel(), capacity, std::move(arrived))
    {
    }

    BasicInSlot& getSlot() override { return _queue.getSlot(); }

    std::optional<Time> take(OscWriter& writer) override
    {
        const auto record = _queue.take();
        if (!record)
            return std::nullopt;
        writer.begin(_address);
        OscValue<T>::write(writer, record->getValue());
        return record->getTimeStamp();
    }

private:
    const std::string _address;
    SendQueue<T> _queue;
};

} // namespace

std::unique_ptr<OscSender> OscSender::create(const OscAddress& address, unsigned capacity,
                                             std::function<void()> arrived)
{
    std::unique_ptr<OscSender> sender;
    withSlotType(address._typeName, [&]<class T>(TypeTag<T>) {
        sender = std::make_unique<TypedSender<T>>(address, capacity, std::move(arrived));
    });
    return sender;
}

} // namespace Trovio::Nodes
