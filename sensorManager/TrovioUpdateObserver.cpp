#include "sensorManager/TrovioUpdateObserver.h"

#include "sensorManager/Conversions.h"
#include "sensorManager/FieldTypes.h"
#include "sensorManager/LogMessage.h"
#include "trovio/Hooks.h"
#include "trovio/Namespace.h"
#include "trovio/OutSlot.h"
#include "trovio/TryPop.h"
#include <algorithm>
#include <typeinfo>

namespace Ostrel {

namespace {

constexpr char logFile[] = "sensorManager/TrovioSensorHandler";
constexpr char unhandledType[] = "Can not handle Trovio Slot of DirectSensor type %s\n";

/// What one update moves values between. Messages carry the signature of the update.
struct Road {
    Trovio::BasicInSlot& _slot;
    const std::string& _slotLabel;
    Field& _field;
    const char* _caller;
};

/// Said once for each slot: who sends such images goes on with it.
void tellRefused(const Trovio::Image& image, const Road& road)
{
    if (Trovio::Hooks::saysOnce(road._slot))
        OSTREL_LOG_FROM(LogLevel::Warning, (LogOrigin{logFile, __LINE__, road._caller}),
                        "Can not convert an image of Trovio Slot %s: format %d, %u x %u pixels; the field's image is "
                        "empty now. Allowed are formats 4 to 10, 16 and 17, up to %zu bytes as RGB\n",
                        road._slotLabel.c_str(), static_cast<int>(image.getFormat()), image.getWidth(),
                        image.getHeight(), Trovio::Image::MaxBytes);
}

/// Null if the object is nothing like that. Nearly always it is exactly that, which is quicker to see.
template <class T, class Base>
T* as(Base& object)
{
    return typeid(object) == typeid(T) ? static_cast<T*>(&object) : dynamic_cast<T*>(&object);
}

/// False if there was nothing to take, or slot or field are not what the row says; nothing was taken then.
template <class Row>
bool takeOne(const Road& road)
{
    auto* const field = as<typename Row::FieldType>(road._field);
    return field && Trovio::tryPop<typename Row::SlotValue>(road._slot, [&](auto&& record) {
               if constexpr (isImage<Row>) {
                   if (const Trovio::Image* refused = Conversions::toField(record.getValue(), *field))
                       tellRefused(*refused, road);
               } else {
                   Conversions::toField(record.getValue(), *field);
               }
           });
}

template <class Row>
void sendValue(Field& field, Trovio::Slot& slot)
{
    using Value = typename Row::SlotValue;
    Trovio::Data<Value> record;
    Conversions::toSlot(static_cast<typename Row::FieldType&>(field), record.getValue());
    record.setTimeStamp();
    static_cast<Trovio::OutSlot<Value>&>(slot).push(record);
}

/// How many rounds one update goes through, at most: a frame ends also where values come faster than it takes them.
std::uint64_t roundsOf(const Trovio::BasicInSlot& slot)
{
    return std::max(std::uint64_t{64}, 2 * std::uint64_t{Trovio::Hooks::getCapacity(slot)});
}

/// The part of an update that has something to do: the slot holds a record. Not inlined: what it saves on the stack
/// would cost each update in which nothing came, and so would the road.
[[gnu::noinline]] bool drain(Trovio::BasicInSlot& slot, const std::string& label, Field& field, const char* caller,
                             const TimeStamp& now)
{
    const Road road{slot, label, field, caller};
    const std::uint64_t rounds = roundsOf(slot);
    std::uint64_t count = 0;
    while (Trovio::Hooks::mayHoldRecord(slot)) {
        if (count == rounds) {
            Trovio::Hooks::cutShort(slot);
            break;
        }
        bool taken = true;
        const bool handled = withFieldType(field.getTypeCode(), [&]<class Row>(Row) { taken = takeOne<Row>(road); });
        if (!taken)
            break;
        if (handled)
            field.processValueChange(now, CallerOutside);
        else
            OSTREL_LOG_FROM(LogLevel::Fatal, (LogOrigin{logFile, __LINE__, caller}), unhandledType,
                            field.getTypeName().c_str());
        ++count;
    }
    return count != 0;
}

} // namespace

TrovioSensorHandler::UpdateObserver::UpdateObserver(TrovioSensorHandler& handler, const std::string& slotLabel)
    : _slotLabel(slotLabel), _handler(&handler)
{
}

TrovioSensorHandler::UpdateObserver::~UpdateObserver()
{
    if (!_slot)
        return;
    OSTREL_LOG(LogLevel::Always, logFile, "Delete Trovio Slot\n");
    if (Trovio::Namespace* const ns = _handler->findNamespace())
        ns->removeSlot(_slotLabel);
    delete _slot;
}

bool TrovioSensorHandler::UpdateObserver::update(const TimeStamp& now)
{
    // Only an in-slot holds records. A dynamic cast says the same, and takes longer.
    return _slot && Trovio::Hooks::mayHoldRecord(*_slot) && _field &&
           drain(*static_cast<Trovio::BasicInSlot*>(_slot), _slotLabel, *_field, __PRETTY_FUNCTION__, now);
}

void TrovioSensorHandler::UpdateObserver::updateOutput(const TimeStamp&)
{
    if (!_field || !_slot || Trovio::Hooks::isInSlot(*_slot))
        return;
    bool sent = false;
    withFieldType(_field->getTypeCode(), [&]<class Row>(Row) {
        if constexpr (!isImage<Row>) { // they come in, and never go out
            sendValue<Row>(*_field, *_slot);
            sent = true;
        }
    });
    if (!sent)
        OSTREL_LOG(LogLevel::Fatal, logFile, unhandledType, _field->getTypeName().c_str());
}

} // namespace Ostrel
