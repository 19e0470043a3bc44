#pragma once

#include "ostrel/BaseObject.h"
#include "ostrel/Observer.h"
#include "ostrel/TimeStamp.h"
#include <map>
#include <string>

namespace Ostrel {

class DirectSensor;
class Field;
class SensorHandlerType;

/// The base of every handler kind. It is offered each sensor of its manager's context, asks its kind for an observer,
/// and keeps what it got: a kind neither attaches nor deletes observers.
/// Ownership: owns the observers; the manager owns the handler; sensors belong to the scene.
/// Threads:   the scene thread.
class SensorHandler : public BaseObject {
public:
    class UpdateObserver;

    explicit SensorHandler(const std::string& name);
    /// Copies nothing: a copy has no name and serves no sensor.
    SensorHandler(SensorHandler&);
    SensorHandler& operator=(const SensorHandler&) = delete;
    ~SensorHandler() override;

    /// Offers a sensor. One that is served already, or that the kind declines, changes nothing; a declined sensor is
    /// asked about again at its next offer. Where the kind throws, nothing has happened, and the exception passes on.
    virtual void regDISensor(DirectSensor* sensor);
    /// A sensor that is not served is no error.
    virtual void unregDISensor(DirectSensor* sensor);

    /// A new, unbound observer for a sensor that takes values, or null to decline it. A sensor without a proc has to
    /// be declined, and so has one that the factory itself unregistered: the base reads the proc's field right
    /// afterwards.
    virtual UpdateObserver* createUpdateObserver(DirectSensor* sensor);
    /// The same for a sensor that gives values.
    virtual UpdateObserver* createOutputUpdateObserver(DirectSensor* sensor);

    virtual const SensorHandlerType& type() const = 0;
    virtual void addLabel(std::string& first, std::string& second) = 0;
    virtual void removeLabel(std::string& first, std::string& second) = 0;
    virtual void addParameter(std::string& name, std::string& value) = 0;
    virtual void removeParameter(std::string& name, std::string& value) = 0;
    virtual bool update(const TimeStamp& now);

    /// Does nothing; a program that calls it links this unit. Returns true.
    static bool init();

    const std::string& getName() const { return _name; }

protected:
    /// Deletes every observer and forgets its sensor.
    void deleteObservers();

    const std::map<DirectSensor*, Observer*>& observers() const { return _observers; }

private:
    std::string _name;
    std::map<DirectSensor*, Observer*> _observers;
};

/// Serves one sensor: each notification becomes an update in the direction that the sensor's output flag says at that
/// moment.
class SensorHandler::UpdateObserver : public Observer {
public:
    explicit UpdateObserver(const char* name = nullptr) : Observer(name) {}
    ~UpdateObserver() override = default;

    void notify(const TimeStamp& now, BaseObject*, BaseObject*, BaseObject*) override;
    /// From the back-end to the sensor's field. True if a value came.
    virtual bool update(const TimeStamp& now);
    /// From the sensor's field to the back-end.
    virtual void updateOutput(const TimeStamp& now);

    /// Null until the observer is bound.
    DirectSensor* getSensor() const { return _sensor; }

protected:
    friend class SensorHandler;

    [[maybe_unused]] void* _link = nullptr; // reserved
    DirectSensor* _sensor = nullptr;        // this and _field are set when the handler binds the observer
    Field* _field = nullptr;
};

} // namespace Ostrel
