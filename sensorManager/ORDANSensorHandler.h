#pragma once

#include "sensorManager/DeviceLabels.h"
#include "sensorManager/SensorHandlerType.h"

namespace Ostrel {

/// The kind "ORDAN", without its device: takes every input sensor, binds those whose label it knows, and moves no
/// value. Threads: the scene thread.
class ORDANSensorHandler : public SensorHandler {
public:
    class UpdateObserver;

    /// Says at fatal level that it cannot be constructed, and is complete nevertheless.
    explicit ORDANSensorHandler(const std::string& name);
    /// Copies no labels.
    ORDANSensorHandler(ORDANSensorHandler& other);
    ~ORDANSensorHandler() override;

    /// Never null. A sensor whose label is known has to have a proc.
    SensorHandler::UpdateObserver* createUpdateObserver(DirectSensor* sensor) override;
    const SensorHandlerType& type() const override;
    /// Hands the value to the observers of the sensors that carry the label, now and when they come.
    void addLabel(std::string& name, std::string& value) override;
    void removeLabel(std::string& name, std::string& value) override;
    void addParameter(std::string& name, std::string& value) override;
    void removeParameter(std::string& name, std::string& value) override;
    bool update(const TimeStamp& now) override;

    /// A new handler that the caller owns; never null. The URL is not used.
    static SensorHandler* create(const std::string& name, const Merid::URL& url);
    static bool init();

    static SensorHandlerType _type;
    static int _objCount; // live handlers of this kind

private:
    static void* _ordan; // reserved

    DeviceLabels _labels; // only grows
};

/// Serves a sensor with nothing.
class ORDANSensorHandler::UpdateObserver : public SensorHandler::UpdateObserver {
public:
    ~UpdateObserver() override = default;
    bool update(const TimeStamp& now) override;
    /// Takes a label's value. Here always false: there is no device.
    virtual bool init(const std::string& value);

private:
    friend class ORDANSensorHandler;

    [[maybe_unused]] void* _device = nullptr; // reserved
    std::string _value;
};

} // namespace Ostrel
