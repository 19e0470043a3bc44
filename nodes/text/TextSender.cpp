#include "nodes/text/TextSender.h"

#include "nodes/shared/SendQueue.h"
#include "nodes/text/TextValue.h"
#include "trovio/SlotTypes.h"
#include <stdexcept>

namespace Trovio::Nodes {

namespace {

template <class T, class... Elements>
constexpr bool isOf = ((std::is_same_v<T, Elements> || std::is_same_v<T, SharedVector<Elements>>) || ...);

template <TextSlotValue T>
class TypedSender final : public TextSender {
public:
    TypedSender(const std::string& label, unsigned capacity, std::function<void()> arrived)
        : _queue(label, capacity, std::move(arrived))
    {
    }

    BasicInSlot& getSlot() override { return _queue.getSlot(); }

    bool take(TextRecord& record) override
    {
        const auto taken = _queue.take();
        if (!taken)
            return false;
        record = {};
        if constexpr (NumberValue<T>) {
            record._isArray = IsSharedVector<T>::value;
            record._isSwitch = isOf<T, bool>;
            record._isColour = isOf<T, Color, ColorRGBA>;
            record._width = TextValue<T>::Width;
            record._isFinite = TextValue<T>::write(taken->getValue(), record._numbers);
        } else {
            record._isText = true;
            record._text = taken->getValue();
        }
        return true;
    }

private:
    SendQueue<T> _queue;
};

} // namespace

std::unique_ptr<TextSender> TextSender::create(const ListedSlot& slot, unsigned capacity, std::function<void()> arrived)
{
    std::unique_ptr<TextSender> sender;
    withSlotType(slot._typeName, [&]<class T>(TypeTag<T>) {
        if constexpr (TextSlotValue<T>)
            sender = std::make_unique<TypedSender<T>>(slot._name, capacity, std::move(arrived));
    });
    return sender ? std::move(sender) : throw std::logic_error("no text carries " + slot._typeName);
}

} // namespace Trovio::Nodes
