#pragma once

#include "sensorManager/DeviceLabels.h"
#include "sensorManager/SensorHandlerType.h"

namespace Ostrel {

/// The kind "OT", without its device: keeps labels, takes every input sensor, and moves no value.
/// Threads: the scene thread.
class OTSensorHandler : public SensorHandler {
public:
    class UpdateObserver;

    /// Says at fatal level that it cannot be constructed, and is complete nevertheless.
    explicit OTSensorHandler(const std::string& name);
    /// Copies no labels.
    OTSensorHandler(OTSensorHandler& other);
    ~OTSensorHandler() override;

    SensorHandler::UpdateObserver* createUpdateObserver(DirectSensor* sensor) override;
    const SensorHandlerType& type() const override;
    /// Hands the value to the observers of the sensors that carry the label.
    void addLabel(std::string& name, std::string& value) override;
    void removeLabel(std::string& name, std::string& value) override;
    void addParameter(std::string& name, std::string& value) override;
    void removeParameter(std::string& name, std::string& value) override;
    bool update(const TimeStamp& now) override;

    /// A new handler that the caller owns; never null. The URL is not used.
    static SensorHandler* create(const std::string& name, const Merid::URL& url);
    static bool init();

    static SensorHandlerType _type;
    /// Copies made, less handlers destroyed: negative where handlers come from create().
    static int _objCount;

private:
    DeviceLabels _labels; // only grows
    [[maybe_unused]] bool _flag;
};

/// Serves a sensor with nothing.
class OTSensorHandler::UpdateObserver : public SensorHandler::UpdateObserver {
public:
    ~UpdateObserver() override = default;
    bool update(const TimeStamp& now) override;
    /// Takes a label's value. Here always false: there is no device.
    virtual bool init(const std::string& value);

private:
    std::string _value;
};

} // namespace Ostrel
