#pragma once

#include "merid/URL.h"
#include "sensorManager/SensorHandler.h"

namespace Trovio {
class Namespace;
class Slot;
} // namespace Trovio

namespace Ostrel {

/// Connects sensors with the data-flow framework: each served sensor gets one typed slot in this handler's namespace,
/// seen from outside as "{NamespaceLabel}/{SlotLabel}".
/// Ownership: the framework's root owns the namespace from construction to destruction; the observers own the slots.
/// Threads:   the scene thread. The root has to be open, from construction to destruction; otherwise the process ends.
class TrovioSensorHandler : public SensorHandler {
public:
    class UpdateObserver;

    /// The URL is what relative file names in the settings of this handler's nodes refer to.
    TrovioSensorHandler(const std::string& name, const Merid::URL& url);
    ~TrovioSensorHandler() override;

    /// A new in-slot and its observer. Null if the sensor has no field or no label; null and a logged message if its
    /// field is of a type without slot.
    SensorHandler::UpdateObserver* createUpdateObserver(DirectSensor* sensor) override;
    /// The same with an out-slot.
    SensorHandler::UpdateObserver* createOutputUpdateObserver(DirectSensor* sensor) override;

    const SensorHandlerType& type() const override;

    /// A route between two labels of this handler's namespace, and its end. Exceptions of the framework pass through.
    void addLabel(std::string& first, std::string& second) override;
    void removeLabel(std::string& first, std::string& second) override;

    /// A node of the type `name` with the settings `value`. A node that cannot be made is logged and left out.
    void addParameter(std::string& name, std::string& value) override;
    /// Removes the node labelled `name`. The value is not used.
    void removeParameter(std::string& name, std::string& value) override;

    /// The slot that serves the sensor; null if this handler does not serve it. The observer keeps ownership.
    Trovio::Slot* getSlot(DirectSensor* sensor) const;

    /// Where its slots are found below the root.
    const std::string& getNamespaceLabel() const { return _namespaceLabel; }

    /// A new handler that the caller owns; never null.
    static SensorHandler* create(const std::string& name, const Merid::URL& url);
    /// Does nothing; a program that calls it links this unit. Returns true.
    static bool init();

    static SensorHandlerType _type;

private:
    /// Null if the namespace is not in the root any more.
    Trovio::Namespace* findNamespace() const;
    /// Everything that a slot of the sensor needs, or no namespace if the sensor is declined without a word.
    struct Place;
    Place findPlace(DirectSensor* sensor) const;

    std::string _namespaceLabel; // as the root chose it
    Merid::URL _baseURL;
};

} // namespace Ostrel
