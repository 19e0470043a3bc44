#include "sensorManager/SensorManager.h"

#include "ostrel/Context.h"
#include "ostrel/DirectSensor.h"
#include "ostrel/DirectSensorProc.h"
#include "ostrel/Subject.h"
#include "sensorManager/LogMessage.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorHandlerType.h"
#include <algorithm>
#include <memory>
#include <utility>

namespace Ostrel {

namespace {

constexpr char logFile[] = "sensorManager/SensorManager";

std::string nameOf(const DirectSensor& sensor)
{
    return sensor.getName().empty() ? sensor.getIDStr() : sensor.getName();
}

// How often a sensor came or went, in any manager: while that stands still, a walk need not look whether its sensor is
// still there.
unsigned long changes = 0;

/// The element behind that one, be it still there or not, so that a walk from null on stands whoever comes and goes
/// meanwhile. Null at the end, and never an element that is null.
template <class T>
T* nextAfter(const std::set<T*>& elements, T* last)
{
    const auto next = elements.upper_bound(last);
    return next == elements.end() ? nullptr : *next;
}

} // namespace

// In this order at load, the reverse at unload: the observers need nothing of the map until a sensor comes.
int SensorManager::_contextAttachmentID = AttachmentBag::createUniqueID();
SensorManager::RegisterObserver SensorManager::_regObserver(DirectSensorProc::registerSubject());
SensorManager::UnregisterObserver SensorManager::_unregObserver(DirectSensorProc::unregisterSubject());
std::map<const Context*, SensorManager*> SensorManager::_managerMap;

SensorManager::SensorManager(Context& context)
{
    const auto [entry, isNew] = _managerMap.try_emplace(&context);
    SensorManager* const before = std::exchange(entry->second, this);
    try {
        context.setAttachment(_contextAttachmentID, this);
    } catch (...) {
        if (isNew)
            _managerMap.erase(entry);
        else
            entry->second = before;
        throw;
    }
}

SensorManager::SensorManager(SensorManager&) : RefCountObject() {}

SensorManager::~SensorManager()
{
    const auto entry = std::find_if(_managerMap.begin(), _managerMap.end(),
                                    [this](const auto& mapped) { return mapped.second == this; });
    if (entry != _managerMap.end())
        _managerMap.erase(entry);
    else
        OSTREL_LOG(LogLevel::Fatal, logFile, "No valid _managerMap entry while destructing SensorManager\n");
}

SensorManager* SensorManager::requestManager(Context& context)
{
    const auto entry = _managerMap.find(&context);
    return entry != _managerMap.end() ? entry->second : new SensorManager(context);
}

void SensorManager::registerSensor(DirectSensor& sensor)
{
    if (!_sensors.insert(&sensor).second) {
        OSTREL_LOG(LogLevel::Fatal, logFile, "Can not register %s/%s a second time\n", sensor.type().getName().c_str(),
                   nameOf(sensor).c_str());
        return;
    }
    const unsigned long change = ++changes;
    SensorHandler* handler = nullptr;
    while ((change == changes || _sensors.contains(&sensor)) && (handler = nextAfter(_handlers, handler)))
        handler->regDISensor(&sensor);
}

void SensorManager::unregisterSensor(DirectSensor& sensor)
{
    if (_sensors.erase(&sensor) == 0) {
        OSTREL_LOG(LogLevel::Fatal, logFile, "Can not unregister %s/%s; unreg. node\n", sensor.type().getName().c_str(),
                   nameOf(sensor).c_str());
        return;
    }
    const unsigned long change = ++changes;
    SensorHandler* handler = nullptr;
    while ((change == changes || !_sensors.contains(&sensor)) && (handler = nextAfter(_handlers, handler)))
        handler->unregDISensor(&sensor);
}

SensorHandler* SensorManager::addHandler(const std::string& typeName, const std::string& name, const Merid::URL& url)
{
    SensorHandlerType* const type = SensorHandlerType::find(typeName);
    if (findHandler(name)) {
        OSTREL_LOG(LogLevel::Fatal, logFile, "There is already a SensorHandler with that name: %s\n", name.c_str());
        return nullptr;
    }
    if (!type) {
        OSTREL_LOG(LogLevel::Warning, logFile, "Unknown SensorHandlerType: %s\n", typeName.c_str());
        return nullptr;
    }
    std::unique_ptr<SensorHandler> made(type->createHandler(name, url));
    if (!made) {
        OSTREL_LOG(LogLevel::Warning, logFile, "Can not create new SensorHandler of type %s\n", typeName.c_str());
        return nullptr;
    }
    _handlers.insert(made.get());
    SensorHandler* const handler = made.release();
    offerAll(*handler);
    return _handlers.contains(handler) ? handler : nullptr;
}

void SensorManager::offerAll(SensorHandler& handler)
{
    try {
        DirectSensor* sensor = nullptr;
        while (_handlers.contains(&handler) && (sensor = nextAfter(_sensors, sensor)))
            handler.regDISensor(sensor);
    } catch (...) {
        if (_handlers.erase(&handler) != 0)
            delete &handler;
        throw;
    }
}

SensorHandler* SensorManager::findHandler(const std::string& name)
{
    const auto found = std::find_if(_handlers.begin(), _handlers.end(), [&name](const SensorHandler* handler) {
        return handler && handler->getName() == name;
    });
    return found == _handlers.end() ? nullptr : *found;
}

bool SensorManager::delHandler(const std::string& name)
{
    SensorHandler* const handler = findHandler(name);
    if (!handler) {
        OSTREL_LOG(LogLevel::Warning, logFile, "Can not delete '%s' SensorHandler\n", name.c_str());
        return false;
    }
    return delHandler(handler);
}

bool SensorManager::delHandler(SensorHandler* handler)
{
    if (!handler)
        return false;
    if (_handlers.erase(handler) == 0) {
        OSTREL_LOG(LogLevel::Fatal, logFile, "Invalid Handler; cannot del. entry\n");
        return false;
    }
    delete handler;
    return true;
}

SensorManager::RegisterObserver::RegisterObserver(Subject& subject) : Observer("register")
{
    subject.attach(*this);
}

void SensorManager::RegisterObserver::notify(const TimeStamp&, BaseObject* object, BaseObject*, BaseObject*)
{
    auto* const sensor = dynamic_cast<DirectSensor*>(object);
    Context* const context = sensor ? sensor->context() : nullptr;
    if (context)
        requestManager(*context)->registerSensor(*sensor);
    else
        OSTREL_LOG(LogLevel::Warning, logFile, "Cannot register sensor without Context: %p/%p\n",
                   static_cast<void*>(sensor), static_cast<void*>(context));
}

SensorManager::UnregisterObserver::UnregisterObserver(Subject& subject) : Observer("unregister")
{
    subject.attach(*this);
}

void SensorManager::UnregisterObserver::notify(const TimeStamp&, BaseObject* object, BaseObject*, BaseObject*)
{
    auto* const sensor = dynamic_cast<DirectSensor*>(object);
    Context* const context = sensor ? sensor->context() : nullptr;
    if (context)
        requestManager(*context)->unregisterSensor(*sensor);
    else
        OSTREL_LOG(LogLevel::Warning, logFile, "Cannot unregister sensor without Context: %p/%p\n",
                   static_cast<void*>(sensor), static_cast<void*>(context));
}

} // namespace Ostrel
