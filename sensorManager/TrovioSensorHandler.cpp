#include "sensorManager/TrovioSensorHandler.h"

#include "ostrel/DirectSensor.h"
#include "ostrel/DirectSensorProc.h"
#include "sensorManager/FieldTypes.h"
#include "sensorManager/LogMessage.h"
#include "sensorManager/SensorHandlerType.h"
#include "sensorManager/TrovioUpdateObserver.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"

namespace Ostrel {

namespace {

constexpr char logFile[] = "sensorManager/TrovioSensorHandler";
constexpr char unhandledType[] = "Can not handle Trovio Slot of DirectSensor type %s\n";

/// Null for a type without slot.
std::unique_ptr<Trovio::BasicInSlot> makeInSlot(int typeCode, const std::string& name, unsigned int bufferSize)
{
    std::unique_ptr<Trovio::BasicInSlot> slot;
    withFieldType(typeCode, [&]<class Row>(Row) {
        using Value = typename Row::SlotValue;
        if (bufferSize <= 1)
            slot = std::make_unique<Trovio::InSlot<Value>>(name);
        else
            slot = std::make_unique<Trovio::BufferedInSlot<Value>>(name, bufferSize);
    });
    return slot;
}

std::unique_ptr<Trovio::BasicOutSlot> makeOutSlot(int typeCode, const std::string& name)
{
    std::unique_ptr<Trovio::BasicOutSlot> slot;
    withFieldType(typeCode,
                  [&]<class Row>(Row) { slot = std::make_unique<Trovio::OutSlot<typename Row::SlotValue>>(name); });
    return slot;
}

} // namespace

SensorHandlerType TrovioSensorHandler::_type("Trovio", &TrovioSensorHandler::create);

} // namespace Ostrel

// The pools stand here, behind the kind's entry, for that is when they have to be built, and the reverse at unload.
namespace Trovio {
#define TROVIO_DEFINE_POOL(type, name)                                                                                 \
    template <>                                                                                                        \
    Cache<type> Cache<type>::the_{};
TROVIO_POOLED_TYPES(TROVIO_DEFINE_POOL)
} // namespace Trovio

namespace Ostrel {

struct TrovioSensorHandler::Place {
    Trovio::Namespace* _namespace = nullptr;
    Field* _field = nullptr;
};

TrovioSensorHandler::TrovioSensorHandler(const std::string& name, const Merid::URL& url)
    : SensorHandler(name), _baseURL(url)
{
    auto ns = std::make_unique<Trovio::Namespace>();
    ns->setBaseURL(_baseURL);
    ns->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    ns->setDirty(false);
    _namespaceLabel = Trovio::Root::get().addNamespace("Context", std::move(ns));
}

TrovioSensorHandler::~TrovioSensorHandler()
{
    // The slots leave the namespace before the namespace leaves the root.
    deleteObservers();
    if (findNamespace())
        Trovio::Root::get().removeNamespace(_namespaceLabel);
}

SensorHandler* TrovioSensorHandler::create(const std::string& name, const Merid::URL& url)
{
    return new TrovioSensorHandler(name, url);
}

const SensorHandlerType& TrovioSensorHandler::type() const
{
    return _type;
}

bool TrovioSensorHandler::init()
{
    return true;
}

Trovio::Namespace* TrovioSensorHandler::findNamespace() const
{
    return Trovio::Root::get().getNamespace(_namespaceLabel);
}

TrovioSensorHandler::Place TrovioSensorHandler::findPlace(DirectSensor* sensor) const
{
    DirectSensorProc* const proc = sensor ? sensor->getDirectSensorProc() : nullptr;
    Field* const field = proc ? proc->getField() : nullptr;
    if (!field || sensor->getLabel().empty())
        return {};
    return {findNamespace(), field};
}

SensorHandler::UpdateObserver* TrovioSensorHandler::createUpdateObserver(DirectSensor* sensor)
{
    const Place place = findPlace(sensor);
    if (!place._namespace)
        return nullptr;
    auto slot = makeInSlot(place._field->getTypeCode(), sensor->getDescription(), sensor->getBufferSize());
    if (!slot) {
        OSTREL_LOG(LogLevel::Fatal, logFile, unhandledType, place._field->getTypeName().c_str());
        return nullptr;
    }
    auto observer = std::make_unique<UpdateObserver>(*this, sensor->getLabel());
    place._namespace->addInSlot(observer->_slotLabel, slot.get());
    observer->_slot = slot.release();
    return observer.release();
}

SensorHandler::UpdateObserver* TrovioSensorHandler::createOutputUpdateObserver(DirectSensor* sensor)
{
    const Place place = findPlace(sensor);
    if (!place._namespace)
        return nullptr;
    auto slot = makeOutSlot(place._field->getTypeCode(), sensor->getDescription());
    if (!slot) {
        OSTREL_LOG(LogLevel::Fatal, logFile, unhandledType, place._field->getTypeName().c_str());
        return nullptr;
    }
    auto observer = std::make_unique<UpdateObserver>(*this, sensor->getLabel());
    place._namespace->addOutSlot(observer->_slotLabel, slot.get());
    observer->_slot = slot.release();
    return observer.release();
}

void TrovioSensorHandler::addLabel(std::string& first, std::string& second)
{
    if (Trovio::Namespace* const ns = findNamespace())
        ns->addRoute(first, second);
}

void TrovioSensorHandler::removeLabel(std::string& first, std::string& second)
{
    if (Trovio::Namespace* const ns = findNamespace())
        ns->removeRoute(first, second);
}

void TrovioSensorHandler::addParameter(std::string& name, std::string& value)
{
    Trovio::Namespace* const ns = findNamespace();
    if (!ns)
        return;
    try {
        auto node = Trovio::NodeType::newInstance(name);
        node->setBaseURL(_baseURL);
        node->setFieldValues(value);
        ns->addNamespace(std::move(node));
    } catch (const Trovio::InvalidNodeException& invalid) {
        OSTREL_LOG(LogLevel::Warning, logFile, "Invalid Trovio Node %s, %s\n", name.c_str(),
                   invalid.getMessage().c_str());
    } catch (const Trovio::InvalidFieldException& invalid) {
        OSTREL_LOG(LogLevel::Warning, logFile, "Invalid Trovio field for node %s, %s\n", name.c_str(),
                   invalid.getMessage().c_str());
    }
}

void TrovioSensorHandler::removeParameter(std::string& name, std::string&)
{
    Trovio::Namespace* const ns = findNamespace();
    if (!ns)
        return;
    try {
        ns->removeNamespace(name);
    } catch (const Trovio::InvalidNodeException& invalid) {
        OSTREL_LOG(LogLevel::Warning, logFile, "Invalid Trovio Node %s, %s\n", name.c_str(),
                   invalid.getMessage().c_str());
    } catch (const Trovio::InvalidNamespaceException& invalid) {
        OSTREL_LOG(LogLevel::Warning, logFile, "Invalid Trovio Namespace %s, %s\n", name.c_str(),
                   invalid.getMessage().c_str());
    }
}

Trovio::Slot* TrovioSensorHandler::getSlot(DirectSensor* sensor) const
{
    const auto found = observers().find(sensor);
    return found == observers().end() ? nullptr : static_cast<UpdateObserver*>(found->second)->_slot;
}

} // namespace Ostrel
