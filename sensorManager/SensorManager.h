#pragma once

#include "merid/URL.h"
#include "ostrel/Observer.h"
#include "ostrel/RefCountObject.h"
#include "ostrel/TimeStamp.h"
#include <map>
#include <set>
#include <string>

namespace Ostrel {

class Context;
class DirectSensor;
class SensorHandler;
class Subject;

/// The hub of one context: offers every sensor to every handler, whichever of the two comes later.
/// Invariant: _managerMap holds a context exactly while its manager lives; the context then carries it as attachment.
/// Ownership: the context owns its manager; the manager owns the handlers that addHandler() made, and leaves them alive
///            when it ends: delete them first. Sensors belong to the scene.
/// Threads:   the scene thread.
class SensorManager : public RefCountObject {
public:
    class RegisterObserver;
    class UnregisterObserver;

    explicit SensorManager(Context& context);
    /// Copies nothing: a copy stands in no map, no context, and knows no sensor and no handler.
    SensorManager(SensorManager&);
    SensorManager& operator=(const SensorManager&) = delete;
    ~SensorManager() override;

    /// The manager of that context, made at the first request. Never null; the context owns it.
    static SensorManager* requestManager(Context& context);

    /// Offers the sensor to every handler; a second registration is logged and changes nothing. An exception of a
    /// handler passes on; the sensor is registered then all the same, until it is unregistered.
    void registerSensor(DirectSensor& sensor);
    void unregisterSensor(DirectSensor& sensor);

    /// Makes a handler of a kind and offers it every sensor. Null, and a logged reason, if the name is taken, the kind
    /// is unknown or the kind cannot make one. The manager owns the handler.
    /// Also null, without a message, where somebody deleted it while it was offered the sensors. When it throws at a
    /// sensor, it is deleted again and the exception passes on.
    SensorHandler* addHandler(const std::string& typeName, const std::string& name, const Merid::URL& url);
    /// Null if there is none of this name.
    SensorHandler* findHandler(const std::string& name);
    /// False, and a logged reason but for null, if there is no such handler.
    bool delHandler(const std::string& name);
    bool delHandler(SensorHandler* handler);

private:
    void offerAll(SensorHandler& handler);

    // Handlers are code of others: sensors and handlers may come and go in each call of one.
    std::set<DirectSensor*> _sensors;
    std::set<SensorHandler*> _handlers;

    static int _contextAttachmentID;
    static RegisterObserver _regObserver;
    static UnregisterObserver _unregObserver;
    static std::map<const Context*, SensorManager*> _managerMap;
};

/// Hears of every sensor that the runtime registers.
class SensorManager::RegisterObserver : public Observer {
public:
    explicit RegisterObserver(Subject& subject);
    ~RegisterObserver() override = default;
    void notify(const TimeStamp&, BaseObject* sensor, BaseObject*, BaseObject*) override;
};

/// Hears of every sensor that the runtime unregisters.
class SensorManager::UnregisterObserver : public Observer {
public:
    explicit UnregisterObserver(Subject& subject);
    ~UnregisterObserver() override = default;
    void notify(const TimeStamp&, BaseObject* sensor, BaseObject*, BaseObject*) override;
};

} // namespace Ostrel
