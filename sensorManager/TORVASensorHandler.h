#pragma once

#include "sensorManager/DeviceLabels.h"
#include "sensorManager/SensorHandlerType.h"

namespace Ostrel {

/// The kind "TORVA": known to the registry, and disabled. A handler that somebody constructs himself keeps parameters
/// and serves no sensor.
/// Threads: the scene thread.
class TORVASensorHandler : public SensorHandler {
public:
    class UpdateObserver;

    explicit TORVASensorHandler(const std::string& name);
    /// Copies no entries.
    TORVASensorHandler(TORVASensorHandler& other);
    ~TORVASensorHandler() override;

    /// Both always null: no sensor is served.
    SensorHandler::UpdateObserver* createUpdateObserver(DirectSensor* sensor) override;
    SensorHandler::UpdateObserver* createOutputUpdateObserver(DirectSensor* sensor) override;
    const SensorHandlerType& type() const override;
    void addLabel(std::string& name, std::string& value) override;
    void removeLabel(std::string& name, std::string& value) override;
    void addParameter(std::string& name, std::string& value) override;
    /// A name that is not there is no error; the value is not used.
    void removeParameter(std::string& name, std::string& value) override;
    bool update(const TimeStamp& now) override;

    const std::map<std::string, std::string>& getParameters() const { return _parameters; }

    /// Always null.
    static SensorHandler* create(const std::string& name, const Merid::URL& url);
    static bool init();

    static SensorHandlerType _type;

private:
    static bool _torvaInitialized; // reserved

    DeviceLabels _labels; // never filled
    std::map<std::string, std::string> _parameters;
};

/// Would serve a sensor; no factory makes one.
class TORVASensorHandler::UpdateObserver : public SensorHandler::UpdateObserver {
public:
    ~UpdateObserver() override = default;
    bool update(const TimeStamp& now) override;
    void updateOutput(const TimeStamp& now) override;
    virtual bool init(const std::string& value, bool flag);

private:
    std::string _first;
    std::string _second;
};

} // namespace Ostrel
