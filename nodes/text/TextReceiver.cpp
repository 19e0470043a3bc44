#include "nodes/text/TextReceiver.h"

#include "nodes/shared/Report.h"
#include "nodes/text/TextValue.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"
#include <stdexcept>

namespace Trovio::Nodes {

namespace {

template <TextSlotValue T>
class TypedReceiver final : public TextReceiver {
public:
    TypedReceiver(const char* node, const std::string& label) : TextReceiver(node), _slot(label) {}

    BasicOutSlot& getSlot() override { return _slot; }

    std::string getExpected() const override
    {
        if constexpr (NumberValue<T>)
            return TextValue<T>::expected();
        else
            return "a text";
    }

    std::size_t getWidth() const override
    {
        if constexpr (Numeric<T>)
            return TextValue<T>::Width;
        else
            return 0;
    }

private:
    bool push(const TextContent& content, const Time& stamp) override
    {
        Data<T> record(T(), stamp);
        if constexpr (NumberValue<T>) {
            if (!content._numbers || !TextValue<T>::read(*content._numbers, record.getValue()))
                return false;
        } else {
            record.getValue() = content._text;
        }
        _slot.push(record);
        return true;
    }

    OutSlot<T> _slot;
};

} // namespace

bool TextReceiver::deliver(const TextContent& content, const Time& stamp)
{
    return push(content, stamp) || refuse(content._text);
}

bool TextReceiver::refuse(std::string_view text)
{
    const std::string shown = shortenText(text);
    {
        const Ostrel::LockGuard guard(_lock);
        _lastRefused = shown;
        if (++_refused > 1)
            return false; // reporting once is enough: the sender will go on
    }
    report(osg::LogWarning,
           std::string(_node) + ": " + getSlot().getName() + " takes " + getExpected() + ", not '" + shown + "'");
    return false;
}

std::string TextReceiver::describeRefused() const
{
    const Ostrel::LockGuard guard(_lock);
    return _refused == 0 ? std::string()
                         : std::to_string(_refused) + " came that " + (_refused == 1 ? "is" : "are") +
                               " no value, the last '" + _lastRefused + "', wanted " + getExpected();
}

std::unique_ptr<TextReceiver> TextReceiver::create(const char* node, const ListedSlot& slot)
{
    std::unique_ptr<TextReceiver> receiver;
    withSlotType(slot._typeName, [&]<class T>(TypeTag<T>) {
        if constexpr (TextSlotValue<T>)
            receiver = std::make_unique<TypedReceiver<T>>(node, slot._name);
    });
    return receiver ? std::move(receiver) : throw std::logic_error("no text carries " + slot._typeName);
}

std::string shortenText(std::string_view text)
{
    constexpr std::size_t maxShown = 60;
    return std::string(text.substr(0, maxShown)) + (text.size() > maxShown ? "…" : "");
}

} // namespace Trovio::Nodes
