#include "nodes/osc/OscMethod.h"

#include "nodes/osc/packet/OscValue.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"

namespace Trovio::Nodes {

namespace {

template <class T>
class TypedMethod final : public OscMethod {
public:
    explicit TypedMethod(const std::string& name) : _slot(name) {}

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

std::unique_ptr<OscMethod> OscMethod::create(const OscAddress& address)
{
    std::unique_ptr<OscMethod> method;
    withSlotType(address._typeName,
                 [&]<class T>(TypeTag<T>) { method = std::make_unique<TypedMethod<T>>(address.getLabel()); });
    return method;
}

} // namespace Trovio::Nodes
